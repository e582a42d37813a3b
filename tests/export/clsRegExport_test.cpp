#include "export/clsRegExport.h"

#include <gtest/gtest.h>

#include "common/clsFileWorks.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

struct Value {
  const char *Branch, *Name, *Text, *Type;
};

std::string Exported(std::initializer_list<Value> values, std::size_t* lost = nullptr) {
  const test::TempFolder temp;
  clsRegExport registry;
  for (const Value& value : values) {
    clsRegEntry& entry = registry.RegEntrys.Add();
    entry.Branch = value.Branch;
    entry.ValueName = value.Name;
    entry.Value = value.Text;
    entry.RegType = GetRegEntryType(value.Type);
  }
  registry.WriteFile(temp.Of("x.reg"));
  if (lost != nullptr) *lost = registry.Lost();
  return clsFileWorks::ReadWhole(temp.Of("x.reg"));
}

// One value's line, of the key "K".
std::string Line(const char* name, const char* value, const char* type) {
  const std::string file = Exported({{"K", name, value, type}});
  const std::string head = "REGEDIT4\r\n\r\n[K]\r\n";
  EXPECT_TRUE(file.starts_with(head) && file.ends_with("\r\n")) << file;
  return file.substr(head.size(), file.size() - head.size() - 2);
}

TEST(clsRegExport, WritesEveryType) {
  EXPECT_EQ(Line("", "C:\\Program Files\\Sample", "STRING"), "@=\"C:\\\\Program Files\\\\Sample\"");
  EXPECT_EQ(Line("a\"b\\", "C:\\a\"b", "string"), "\"a\"b\\\"=\"C:\\\\a\\\"b\"");
  EXPECT_EQ(Line("Count", "42", "DWORD"), "\"Count\"=dword:0000002a");
  EXPECT_EQ(Line("n", "-1", "dword"), "\"n\"=dword:ffffffff");
  EXPECT_EQ(Line("n", "305419896", "little_endian"), "\"n\"=dword:12345678");
  EXPECT_EQ(Line("n", "305419896", "BIG_ENDIAN"), "\"n\"=hex(5):12,34,56,78");
  EXPECT_EQ(Line("Data", "01 02 FF", "BINARY"), "\"Data\"=hex:01,02,ff");
  EXPECT_EQ(Line("Path", "%Sys\u00E4\u20AC", "EXPAND_STRING"),
            "\"Path\"=hex(2):25,53,79,73,e4,80,00");
  EXPECT_EQ(Line("Path", "", "EXPAND_STRING"), "\"Path\"=hex(2):,00");
  EXPECT_EQ(Line("n", "A", "NONE"), "\"n\"=hex(0):41,00");
  EXPECT_EQ(Line("m", "61 00 00", "MULTI_STRING"), "\"m\"=hex(7):61,00,00");
  EXPECT_EQ(Line("r", "0A", "RESOURCE_REQUIREMENTS_LIST"), "\"r\"=hex(a):0a");
}

TEST(clsRegExport, SortsAndHeads) {
  EXPECT_EQ(Exported({{"K\\b", "a", "1", "DWORD"},
                      {"K\\b", "Z", "2", "DWORD"},
                      {"k\\B", "", "3", "DWORD"},
                      {"K\\B", "x", "4", "DWORD"},
                      {"K\\B", "x", "5", "DWORD"}}),
            "REGEDIT4\r\n\r\n"
            "[K\\B]\r\n\"x\"=dword:00000004\r\n\"x\"=dword:00000005\r\n"
            // Differs from the last branch in case alone, so it has no heading of its own.
            "\"Z\"=dword:00000002\r\n\"a\"=dword:00000001\r\n@=dword:00000003\r\n");
  // By UTF-16 units: U+10000 (D800 DC00) stands before U+FF01.
  const std::string file =
      Exported({{"K", "\uFF01", "1", "DWORD"}, {"K", "\U00010000", "2", "DWORD"}});
  EXPECT_LT(file.find("00000002"), file.find("00000001"));
}

TEST(clsRegExport, WrapsBehindTheFirstCommaPastTheLimit) {
  std::string pairs = "00";
  for (int i = 1; i < 60; ++i) pairs += " 00";
  const std::string line = Line("Data", pairs.c_str(), "BINARY");
  // "Data"= takes 7 characters: the first comma at or past the 70th of "hex:00,00,...".
  const std::size_t first = line.find("\\\r\n  00,");
  EXPECT_EQ(first, 7 + 70U);
  const std::size_t second = line.find("\\\r\n  00,", first + 3);
  EXPECT_EQ(second - first, 3 + 2 + 75U);
  EXPECT_NE(line.back(), ',');
  // Nothing is left behind the last break: a line of two blanks closes the value.
  EXPECT_EQ(clsRegExport::WrapHexText("hex:00,", 71), "hex:00,\\\r\n  ");
}

TEST(clsRegExport, TellsWhatItCantWrite) {
  std::size_t lost = 0;
  const std::string file = Exported(
      {{"K\u0416", "n", "\u2603", "STRING"}, {"K\u0416", "p", "\u2603", "EXPAND_STRING"}}, &lost);
  EXPECT_NE(file.find("[K?]\r\n\"n\"=\"?\"\r\n\"p\"=hex(2):3f,00"), std::string::npos);
  EXPECT_EQ(lost, 3U);
  const std::string longName(74, 'n');
  EXPECT_EQ(Line(longName.c_str(), "1", "DWORD"), "\"" + longName + "\"=dword:00000001");
  const std::pair<Value, std::int32_t> refused[] = {
      {{"K", longName.c_str(), "00", "BINARY"}, errnum::InvalidArgument},
      {{"K", "n", "4294967296", "DWORD"}, errnum::Overflow},
      {{"K", "n", "x", "DWORD"}, errnum::TypeMismatch}};
  for (const auto& [value, number] : refused) {
    EXPECT_EQ(test::NumberOf([&] { Exported({value}); }), number) << value.Text;
  }
}

}  // namespace
}  // namespace sandrel
