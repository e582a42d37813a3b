#include "platform/registry/texthive.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <random>

#include "common/clsError.h"
#include "common/text.h"

namespace sandrel {
namespace {

const std::string Head =
    "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\Machine\n\n#arch=win64\n";

std::string Hex(std::string_view data) {
  std::string out;
  for (const char byte : data) out += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  return out;
}

// What is wrong with the content; empty when nothing is.
std::string Fault(const std::string& content) {
  try {
    ReadTextHive(content, "/prefix/system.reg");
    return {};
  } catch (const clsError& error) {
    EXPECT_EQ(error.Number(), errnum::Hive);
    EXPECT_NE(error.Description().find("/prefix/system.reg"), std::string::npos);
    return error.Description();
  }
}

TEST(texthive, ReadsEveryFormOfAValue) {
  const std::tuple<const char*, const char*, std::uint32_t, const char*> cases[] = {
      {R"(@="")", "", 1, "0000"},
      {R"("n"="a\\b\"c")", "n", 1, "61005c006200220063000000"},
      {R"("n"="\a\b\e\f\n\r\t\v")", "n", 1, "070008001b000c000a000d0009000b000000"},
      {R"("n"="\0\11\0011\777")", "n", 1, "0000090001003100ff010000"},
      {R"("n"="\xe4\x20acZ\x20ac1\xd83d\xde00\x0ag\xq\y")", "n", 1,
       "e400ac205a00ac2031003dd800de0a0067007800710079000000"},
      {"\"n\"=\"\xE4\"", "n", 1, "e4000000"},  // a raw byte is Latin-1
      {R"("n"=str(ffff0012):"a")", "n", 0xFFFF0012u, "61000000"},
      {R"("n"=dword:fFfffffe)", "n", 4, "feffffff"},
      {R"("n"=hex:)", "n", 3, ""},
      {R"("n"=hex:00,Ff,a)", "n", 3, "00ff0a"},
      {"\"n\"=hex:01,\\\n  02,03,\\\r\n04", "n", 3, "01020304"},
      {R"("n"=hex(b):01)", "n", 11, "01"},
      {R"("n"=hex(ffff1003):01)", "n", 0xFFFF1003u, "01"},
      {R"( "a\"]b\x20ac\xd83d\xde00\xd800" = hex:01 )", "a\"]b€😀\xED\xA0\x80", 3, "01"},
  };
  for (const auto& [line, name, type, data] : cases) {
    const TextHive hive = ReadTextHive(Head + "\n[K] 1\n" + line + "\n", "f");
    const clsKeyTree::Value& value = hive.tree->Root()->subkeys.at(0)->values.at(0);
    EXPECT_EQ(value.name, name) << line;
    EXPECT_EQ(value.type, type) << line;
    EXPECT_EQ(Hex(value.data), data) << line;
  }
}

TEST(texthive, ReadsKeysInAnyOrder) {
  const TextHive hive =
      ReadTextHive(Head + "\n[Software\\\\Wine\\\\A] 1290444000 \n" + R"(#time=1cb8a5c1f3a2b00
#other
;; note
"v"="1"

[Software\\Wine] 1290444000
"v"="2"

[SOFTWARE\\wine\\a\\\[\x20ac\]\\\\b] 2

[Soft] 3
[Soft2] 3
[] 4
@="root"
[Software\\Wine\\A] 5
#link
"V"="3"
)",
                   "f");
  clsKeyTree::Key* root = hive.tree->Root();
  ASSERT_EQ(root->subkeys.size(), 3u);
  EXPECT_EQ(root->values.size(), 1u);
  const clsKeyTree::Key* key = clsKeyTree::FindKey(root, "Software\\Wine\\A");
  ASSERT_NE(key, nullptr);
  EXPECT_TRUE(key->link);
  ASSERT_EQ(key->values.size(), 1u);  // the same value again replaces its data
  EXPECT_EQ(Hex(key->values[0].data), "33000000");
  EXPECT_NE(clsKeyTree::FindKey(root, "software\\WINE\\a\\[€]\\b"), nullptr);
  EXPECT_EQ(clsKeyTree::FindKey(root, "Software\\Wine")->modified, 129349176000000000);
}

TEST(texthive, RefusesWhatIsCutOffOrDamaged) {
  const std::string key = Head + "\n[K] 1\n";
  const struct {
    std::string content, fault;
  } cases[] = {
      {"", "reg: the file is empty"},
      {"REGEDIT4\n", "line 1: the file doesn't begin with"},
      {Head, "line 4: the file ends before the first key"},
      {Head + "\"v\"=\"1\"\n", "line 5: a value stands before the first key"},
      {Head + "\n[K", "line 6: the file ends in the middle of a line"},
      {Head + "\n[K\n", "line 6: the key's name has no end"},
      {Head + "\n[K] x\n", "line 6: the key's time is no number"},
      {Head + "\n[K] 1 2\n", "line 6: something stands behind"},
      {key + "#time=xyz\n", "line 7: the key's time is no number"},
      {key + "#class=\"x\n", "line 7: the key's class has no end"},
      {key + "\"v\"=\"1\n", "line 7: the value's text has no end"},
      {key + "\"v\"=\"1\\\n", "line 7: the value's text has no end"},
      {key + "\"v\n", "line 7: the value's name has no end"},
      {key + "\"v\"\n", "line 7: \"=\" is missing"},
      {key + "\"v\"=qword:1\n", "line 7: the value's form is unknown"},
      {key + "\"v\"=\"1\"x\n", "line 7: something stands behind"},
      {key + "\"v\"=dword:123456789\n", "line 7: the value's number is no number"},
      {key + "\"v\"=hex:0g\n", "line 7: the value's data are no hexadecimal bytes"},
      {key + "\"v\"=hex:01,\\\n", "line 7: the file ends in the middle of a value"},
      {key + "\"v\"=hex:01,\\\n\n[L] 1\n", "line 8: the value's data end in a comma"},
      {key + "\"v\"=hex(3:01\n", "line 7: the value's type is no number"},
      {key + "garbage\n", "line 7: the line is neither a key nor a value"},
      {key + std::string("\"v\"=\"\0\"\n", 8), "line 7: the line holds zero bytes"},
  };
  for (const auto& [content, fault] : cases)
    EXPECT_NE(Fault(content).find(fault), std::string::npos) << Fault(content);
}

// As Wine's server wrote them: escapes, wrapped lines, class and link, and a head of several lines.
const std::string Sample = Head + R"(
[] 1795384518
#time=1dd7acc2a1cd054
@="def\"ault"
"a]b[c\"d\\e"="x"
"be"=hex(5):01,02,03,04
"big"=hex(ffff1234):01
"bin"=hex:00,01,02,ff,aa,bb,cc,dd,ee,00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,\
  0e,0f,10,11,12,13,14,15,16,17,18,19,1a,1b,1c,1d
"ctl"="\0011\a\e\eA\x00e4a\x20acg\xd800A"
"dw"=dword:fffffffe
"dwshort"=hex(4):01,02
"exp"=str(2):"%a%"
"multi"=str(7):"a\0b\0"
"none"=hex(0):
"szempty"=hex(1):
"szodd"=hex(1):41,00,00,00,00
"szun"=hex(1):41,00
"\xe4\xf6\xfc\x20ac\xd83d\xde00x1"="\xe4\xf6\xfc\x20ac\xd83d\xde00x1"

[Software\\OddTest\\\[br\xe4\]cket\x20ac1] 1795384518
#time=1dd7acc2a1ccf5a
#class="cl\x20ac"
"x"="y"

[Software\\OddTest\\empty] 1795384518
#time=1dd7acc2a1cd054

[Software\\Other\\Link] 1795382553
#time=1dd7ac7967a957e
#link
"SymbolicLinkValue"=hex(6):5c,00,52,00,65,00,67,00,69,00,73,00,74,00,72,00,79,\
  00,5c,00,55,00
)";

TEST(texthive, WritesBackWhatWineWroteByteForByte) {
  EXPECT_EQ(WriteTextHive(ReadTextHive(Sample, "f")), Sample);
}

TEST(texthive, ReadsBackWhateverItWrites) {
  std::mt19937 random(7);
  const auto number = [&](unsigned below) { return random() % below; };
  for (int round = 0; round < 300; ++round) {
    TextHive hive;
    hive.tree = std::make_shared<clsKeyTree>();
    hive.head = Head;
    clsKeyTree::Key* key = hive.tree->AddSubkey(*hive.tree->Root(), "K");
    key->modified = 133000000000000000;
    const auto units = [&] {
      std::string utf16;
      for (unsigned i = number(8); i > 0; --i) {
        static constexpr char16_t Odd[] = {0,      7,      27,     '0',    '7',  'f',  'x',
                                           '"',    '\\',   '[',    ']',    0x7F, 0x80, 0xFF,
                                           0x20AC, 0xD83D, 0xDE00, 0xFFFF, '\n', '\r'};
        const char16_t unit = Odd[number(std::size(Odd))];
        utf16.push_back(static_cast<char>(unit));
        utf16.push_back(static_cast<char>(unit >> 8));
      }
      return utf16;
    };
    clsKeyTree::Value& value = clsKeyTree::AddValue(*key, text::FromUtf16Le(units()));
    value.type = number(9);
    value.data = units() + std::string(number(3), '\0') + std::string(number(90), 'h');
    if (number(2) == 0) key->className = std::make_unique<std::string>(units());
    const auto shown = [](const clsKeyTree::Key& shownKey) {
      const clsKeyTree::Value& first = shownKey.values.at(0);
      const std::string* const name = shownKey.className.get();
      return fmt::format("{} {} {} {} {}", shownKey.modified, Hex(first.name), first.type,
                         Hex(first.data), name != nullptr ? Hex(*name) : "none");
    };
    const std::string written = WriteTextHive(hive);
    const TextHive again = ReadTextHive(written, "f");
    EXPECT_EQ(shown(*again.tree->Root()->subkeys.at(0)), shown(*key)) << written;
  }
}

TEST(texthive, EndsInAHiveOrAnErrorWhateverTheBytes) {
  std::mt19937 random(3);
  int refused = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string content = Sample;
    for (int change = 0; change < 3; ++change) {
      content[random() % content.size()] = static_cast<char>(random());
    }
    if (round % 3 == 0) content.resize(random() % content.size());
    refused += Fault(content).empty() ? 0 : 1;
  }
  EXPECT_GT(refused, 1000);  // at least what is cut off inside a line
}

TEST(texthive, ReadsKeysOfAnyDepth) {
  std::string path = "k";
  for (int level = 1; level < 20000; ++level) path += "\\\\k";
  const std::string content = Head + "\n[" + path + "] 1\n#time=19db1ded53e8000\n";
  const TextHive hive = ReadTextHive(content, "f");
  EXPECT_NE(WriteTextHive(hive).find(path), std::string::npos);
}

}  // namespace
}  // namespace sandrel
