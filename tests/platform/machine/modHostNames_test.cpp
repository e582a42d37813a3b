#include "platform/machine/modHostNames.h"

#include <gtest/gtest.h>

namespace sandrel::hostnames {
namespace {

TEST(modHostNames, MapsBytesThatAreNoTextToLettersAndBack) {
  const std::pair<std::string, std::string> cases[] = {
      {"caf\xE9", "caf\xEF\x9F\xA9"},
      {"\x80", "\xEF\x9E\x80"},
      {"\xFF", "\xEF\x9F\xBF"},
      {"cut\xE6\x97", "cut\xEF\x9F\xA6\xEF\x9E\x97"},
      // The letter that stands for byte FF, found in a host name: three bytes of its own.
      {"\xEF\x9F\xBF", "\xEF\x9F\xAF\xEF\x9E\x9F\xEF\x9E\xBF"},
      // Its neighbours are letters as any other.
      {"\xEF\x9D\xBF\xEF\xA0\x80", ""},
      {"b\xC3\xA9t\xC3\xA9 \xE6\x97\xA5 \xF0\x9F\x98\x80. ", ""},
      {"lone\xED\xA0\x80surrogate", ""},
  };
  for (const auto& [name, mapped] : cases) {
    std::string windows = "before:";
    EXPECT_EQ(AppendWindowsName(windows, name), mapped.empty() ? Form::Same : Form::Mapped) << name;
    EXPECT_EQ(windows, "before:" + (mapped.empty() ? name : mapped));
    std::string host = "/";
    EXPECT_TRUE(AppendHostName(host, windows.substr(7)));
    EXPECT_EQ(host, "/" + name);
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
