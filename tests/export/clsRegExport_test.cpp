#include "export/clsRegExport.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "Places.h"
#include "common/clsFileWorks.h"
#include "common/text.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

struct Value {
  const char *Branch, *Name, *Text, *Type;
};

std::string Exported(std::initializer_list<Value> values,
                     std::vector<std::string>* leftOut = nullptr) {
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
  if (leftOut != nullptr) *leftOut = registry.LeftOut();
  EXPECT_EQ(clsFileWorks::FileExists(temp.Of("x.reg")), registry.Written() > 0);
  return registry.Written() > 0 ? clsFileWorks::ReadWhole(temp.Of("x.reg")) : std::string();
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
  EXPECT_EQ(clsRegExport::QuoteValueName("a\"b"), "\"a\"b\"");
  EXPECT_EQ(Line("n", "C:\\a\"b", "string"), "\"n\"=\"C:\\\\a\\\"b\"");
  EXPECT_EQ(Line("q", "01 02", "QWORD") + Line("t", "0A", "TYPE 0x00012345"),
            "\"q\"=hex(b):01,02\"t\"=hex(12345):0a");
  EXPECT_EQ(Line("Count", "42", "DWORD"), "\"Count\"=dword:0000002a");
  EXPECT_EQ(Line("n", "-1", "dword"), "\"n\"=dword:ffffffff");
  EXPECT_EQ(Line("n", "305419896", "little_endian"), "\"n\"=dword:12345678");
  EXPECT_EQ(Line("n", "305419896", "BIG_ENDIAN"), "\"n\"=hex(5):12,34,56,78");
  EXPECT_EQ(Line("Data", "01 02 FF", "BINARY"), "\"Data\"=hex:01,02,ff");
  EXPECT_EQ(Line("Path", "%Sys\u00E4\u20AC", "EXPAND_STRING"),
            "\"Path\"=hex(2):25,53,79,73,e4,80,00");
  EXPECT_EQ(Line("Path", "", "EXPAND_STRING"), "\"Path\"=hex(2):00");
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
  clsRegExport registry;
  for (const char* name : {"\uFF01", "\U00010000"}) registry.RegEntrys.Add({"K", name, "", 1});
  registry.SortRegEnteries();
  EXPECT_EQ(registry.RegEntrys.Items()[0].ValueName, "\U00010000");
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

// The text that stands as "61,0a,00".
std::string TextOf(const std::string& pairs) {
  std::string bytes;
  for (std::size_t at = 0; at + 2 < pairs.size(); at += 3) {
    bytes.push_back(static_cast<char>(std::stoi(pairs.substr(at, 2), nullptr, 16)));
  }
  EXPECT_TRUE(pairs.ends_with(",00"));
  std::string text = text::FromCp1252(bytes);
  text::ReplaceNul(text);
  return text;
}

// A reader of such files, as strict as an editor's: "key|name" to "type:data".
std::map<std::string, std::string> ReadBack(std::string file) {
  std::map<std::string, std::string> values;
  for (std::size_t at; (at = file.find("\\\r\n  ")) != std::string::npos;) file.erase(at, 5);
  std::string key;
  for (std::size_t from = 0, end; (end = file.find("\r\n", from)) != std::string::npos;
       from = end + 2) {
    const std::string line = text::FromCp1252(file.substr(from, end - from));
    if (line.starts_with("[")) key = line.substr(1, line.rfind(']') - 1);
    if (!line.starts_with("\"") && !line.starts_with("@")) continue;
    std::size_t i = 0;
    const auto quoted = [&] {
      std::string text;
      for (++i; i < line.size() && line[i] != '"'; ++i) text += line[line[i] == '\\' ? ++i : i];
      ++i;
      return text;
    };
    std::string name;
    if (line[0] == '@') {
      i = 1;
    } else {
      name = quoted();
    }
    if (i >= line.size() || line[i] != '=') continue;
    const bool isText = line[++i] == '"';
    std::string data = isText ? "1:" + quoted() : line.substr(i);
    if (data.starts_with("hex(1):")) data = "1:" + TextOf(data.substr(7));
    EXPECT_TRUE(values.emplace(key + "|" + name, data).second);
  }
  return values;
}

// No row makes the file say what no row says, whatever its names and texts hold.
TEST(clsRegExport, AReaderGetsTheRowsOrTheyAreNamed) {
  std::mt19937 random(7);
  const auto below = [&](unsigned most) { return static_cast<unsigned>(random()) % most; };
  const std::vector<std::string> odd = {
      "\r\n[EVIL]\r\n", "\"", "\\", "\"=\"", "]", "[", "=", "\r", "\n",
      "\u2400",         "\t", ",",  ";",     "@", "'"};
  const auto text = [&] {
    std::string made;
    for (unsigned n = below(90); n > 0; --n) {
      if (below(9) == 0) {
        made += odd[below(static_cast<unsigned>(odd.size()))];
      } else if (below(60) == 0) {
        made += text::FromUtf16Le(
            std::string{static_cast<char>(random()), static_cast<char>(random())});
      } else {
        made.push_back(static_cast<char>('a' + below(26)));
      }
    }
    return below(5) == 0 ? std::string() : made;
  };
  const test::TempFolder temp;
  std::size_t written = 0;
  for (int round = 0; round < 3000; ++round) {
    clsRegExport registry;
    std::map<std::string, std::string> expected;
    for (unsigned n = 1 + below(3); n > 0; --n) {
      clsRegEntry entry{"K\\" + text(), std::to_string(n) + text(), text(), below(3) == 0 ? 4 : 1};
      if (below(3) == 0) entry = {"K\\plain", "plain" + std::to_string(n), text(), 1};
      const std::string number = std::to_string(below(1000));
      if (entry.RegType == 4 && below(2) == 0) entry.Value = number;
      registry.RegEntrys.Add(entry);
    }
    const std::vector<clsRegEntry> rows = registry.RegEntrys.Items();
    registry.WriteFile(temp.Of("x.reg"));
    EXPECT_EQ(registry.Written() + registry.LeftOut().size(), rows.size());
    if (registry.Written() == 0) continue;
    written += registry.Written();
    std::size_t found = 0;
    for (const auto& [place, data] : ReadBack(clsFileWorks::ReadWhole(temp.Of("x.reg")))) {
      for (const clsRegEntry& row : rows) {
        if (row.Branch + "|" + row.ValueName != place) continue;
        found += data ==
                 (row.RegType == 4 ? clsRegExport::FormatValue(row.Value, 4, 0) : "1:" + row.Value);
      }
    }
    ASSERT_EQ(found, registry.Written()) << clsFileWorks::ReadWhole(temp.Of("x.reg"));
  }
  EXPECT_GT(written, 1000U);
}

TEST(clsRegExport, WhatCantStandInTextGoesOutAsBytes) {
  EXPECT_EQ(Line("n", "a\r\n[K]\r\n\"x\"=\"y\"\u2400", "STRING").substr(0, 28),
            "\"n\"=hex(1):61,0d,0a,5b,4b,5d");
  const std::string longName(200, 'n');
  EXPECT_EQ(Line(longName.c_str(), "00 01 02", "BINARY"),
            "\"" + longName + "\"=hex:00,\\\r\n  01,02");
}

// The manual's table has a row for each of these, and no other.
TEST(clsRegExport, WhatTheFormatCantCarryIsNamedAsInTheManual) {
  struct Row {
    const char* What;
    std::vector<Value> Examples;
  };
  const Row rows[] = {
      {"a letter that code page 1252 (Western European) lacks, in a key, a name, a STRING, an "
       "EXPAND_STRING or a MULTI_STRING",
       {{"K\u0416", "n", "1", "DWORD"},
        {"K", "n\u0416", "1", "DWORD"},
        {"K", "n", "\u2603", "STRING"},
        {"K", "n", "\u2603\n", "STRING"},
        {"K", "n", "\u2603", "EXPAND_STRING"},
        {"K", "n", "D0 96 00 00", "MULTI_STRING"}}},
      {"a quote or a backslash in a value's name",
       {{"K", "a\"b", "1", "DWORD"}, {"K", "C:\\x", "1", "DWORD"}, {"K", "x\\", "1", "DWORD"}}},
      {"control characters in the name of a key or a value",
       {{"K\n", "n", "1", "DWORD"}, {"K", "a\r\nb", "1", "DWORD"}, {"K", "\u2400", "1", "DWORD"}}},
      {"a DWORD or BIG_ENDIAN value whose data is no number",
       {{"K", "n", "x", "DWORD"}, {"K", "", "x", "BIG_ENDIAN"}}},
      {"one whose number has more than 32 bits", {{"K", "n", "4294967296", "DWORD"}}}};
  std::string table;
  for (const Row& row : rows) {
    std::string reason;
    for (const Value& value : row.Examples) {
      std::vector<std::string> leftOut;
      EXPECT_EQ(Exported({{"K", "fits", "1", "DWORD"}, value}, &leftOut),
                "REGEDIT4\r\n\r\n[K]\r\n\"fits\"=dword:00000001\r\n");
      const std::string place =
          *value.Name == 0 ? "(Default)" : '"' + std::string(value.Name) + '"';
      const std::string head = std::string(value.Branch) + " " + place + ": ";
      ASSERT_TRUE(leftOut.size() == 1 && leftOut[0].starts_with(head)) << row.What;
      EXPECT_TRUE(reason.empty() || leftOut[0] == head + reason) << leftOut[0];
      reason = leftOut[0].substr(head.size());
    }
    table += "| " + std::string(row.What) + " | " + reason + " |\n";
  }
  const std::string manual = clsFileWorks::ReadWhole(SANDREL_MANUAL "/09-exporting.md");
  EXPECT_NE(manual.find("\n| What | Sandrel's words |\n|---|---|\n" + table + "\n"),
            std::string::npos)
      << table;
  EXPECT_EQ(Exported({{"K", "n", "x", "DWORD"}}), "");
}

}  // namespace
}  // namespace sandrel
