#include "platform/machine/modHostNames.h"

#include <gtest/gtest.h>

#include <set>

namespace sandrel::hostnames {
namespace {

TEST(modHostNames, MapsBytesThatAreNoTextToLettersAndBack) {
  struct Case {
    std::string Host;
    Form Expected;
    std::string Windows;
  };
  const Case cases[] = {
      {"plain name.txt", Form::Same, "plain name.txt"},
      {"b\xC3\xA9t\xC3\xA9 \xE6\x97\xA5 \xF0\x9F\x98\x80", Form::Same,
       "b\xC3\xA9t\xC3\xA9 \xE6\x97\xA5 \xF0\x9F\x98\x80"},
      {"trailing. ", Form::Same, "trailing. "},
      {"lone\xED\xA0\x80surrogate", Form::Same, "lone\xED\xA0\x80surrogate"},
      {"caf\xE9", Form::Mapped, "caf\xEF\x9F\xA9"},
      {"\x80", Form::Mapped, "\xEF\x9E\x80"},
      {"\xFF", Form::Mapped, "\xEF\x9F\xBF"},
      {"cut\xE6\x97", Form::Mapped, "cut\xEF\x9F\xA6\xEF\x9E\x97"},
      // The letter that stands for byte FF, found in a host name: three bytes of its own.
      {"\xEF\x9F\xBF", Form::Mapped, "\xEF\x9F\xAF\xEF\x9E\x9F\xEF\x9E\xBF"},
      // Its neighbours are letters as any other.
      {"\xEF\x9D\xBF\xEF\xA0\x80", Form::Same, "\xEF\x9D\xBF\xEF\xA0\x80"},
  };
  std::set<std::string> seen;
  for (const Case& c : cases) {
    std::string windows = "before:";
    EXPECT_EQ(AppendWindowsName(windows, c.Host), c.Expected) << c.Host;
    ASSERT_TRUE(windows.starts_with("before:"));
    windows.erase(0, 7);
    EXPECT_EQ(windows, c.Windows) << c.Host;
    EXPECT_TRUE(seen.insert(windows).second) << c.Host;
    std::string host = "/";
    EXPECT_TRUE(AppendHostName(host, windows));
    EXPECT_EQ(host, "/" + c.Host);
  }
}

TEST(modHostNames, RefusesNamesThatWindowsOrTheHostCannotHave) {
  for (const char* name : {"a\\b", "a:b", "*", "what?", "\"", "<", ">", "|", "tab\t", "\x01"}) {
    std::string windows = "kept";
    EXPECT_EQ(AppendWindowsName(windows, name), Form::Impossible) << name;
    EXPECT_EQ(windows, "kept");
    EXPECT_FALSE(AppendHostName(windows, name)) << name;
    EXPECT_EQ(windows, "kept");
  }
  // Stand-ins for C3 A9, which are a letter, and a stray byte that no Windows name holds.
  for (const char* name : {"\xEF\x9F\x83\xEF\x9E\xA9", "\xE9"}) {
    std::string host = "kept";
    EXPECT_FALSE(AppendHostName(host, name));
    EXPECT_EQ(host, "kept");
  }
}

}  // namespace
}  // namespace sandrel::hostnames
