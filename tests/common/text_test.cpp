#include "common/text.h"

#include <gtest/gtest.h>

namespace sandrel::text {
namespace {

using namespace std::string_literals;

// A text with everything that may stand in one: letters of one to four bytes, a lone surrogate,
// bytes that belong to no sequence.
const std::string Everything = "a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80\xED\xA0\x80\xFF\xC3z";

TEST(text, KeepsEveryByteWhileItDecodes) {
  std::string again;
  std::size_t characters = 0;
  for (std::size_t i = 0; i < Everything.size(); ++characters) Append(again, Next(Everything, i));
  EXPECT_EQ(again, Everything);
  EXPECT_EQ(characters, 8u);
  // Forms that are too long, beyond the last character, or cut off are single bytes.
  for (const std::string& bytes : {"\xC0\x80"s, "\xE0\x80\x80"s, "\xF0\x80\x80\x80"s,
                                   "\xF4\x90\x80\x80"s, "\xE6\x97"s, "\x80"s}) {
    EXPECT_EQ(Length(bytes), bytes.size());
    EXPECT_FALSE(IsValidUtf8(bytes));
    EXPECT_EQ(Fold(bytes), bytes);
  }
  EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));
  EXPECT_TRUE(IsValidUtf8("a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80"));
}

TEST(text, CountsUtf16Units) {
  EXPECT_EQ(Length(Everything), 9u);
  EXPECT_EQ(Left(Everything, 4), "a\xC3\xA9\xE6\x97\xA5");  // never half a pair
  EXPECT_EQ(Left(Everything, 5), "a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80");
  EXPECT_EQ(Left(Everything, 100), Everything);
}

TEST(text, FoldsLettersOneToOne) {
  using Pair = std::pair<const char*, const char*>;
  const auto expect = [](bool equal, std::initializer_list<Pair> pairs) {
    for (const auto& [a, b] : pairs) {
      EXPECT_EQ(EqualNoCase(a, b), equal) << a << " " << b;
      EXPECT_EQ(Fold(std::string_view(a)) == Fold(std::string_view(b)), equal) << a << " " << b;
    }
  };
  // Greek with the sigma of a word's end, Cyrillic, and Deseret beyond 16 bits.
  expect(true, {{"Program FILES", "pROGRAM files"},
                {"ÄÖ", "äö"},
                {"Σ", "σ"},
                {"σ", "ς"},
                {"Ж", "ж"},
                {"𐐀", "𐐨"}});
  expect(false, {{"ß", "ss"}, {"é", "e"}, {"a", "ab"}, {"[", "{"}, {"\xC9", "\xE9"}});  // bytes
  EXPECT_EQ(FoldAscii("Ä ABC"), "Ä abc");
  EXPECT_EQ(Upper("ä abc"), "Ä ABC");
  EXPECT_EQ(Lower("Ä ABC"), "ä abc");
  EXPECT_TRUE(StartsWithNoCase("Äbc", "äB"));
  EXPECT_FALSE(StartsWithNoCase("ab", "abc"));
}

TEST(text, GoesThroughUtf16AndBack) {
  const std::string name = "a\xE6\x97\xA5\xF0\x9F\x98\x80\xED\xA0\x80.\xED\xB0\x80";
  const std::string little = ToUtf16Le(name);
  EXPECT_EQ(little, "a\0\xE5\x65\x3D\xD8\x00\xDE\x00\xD8.\0\x00\xDC"s);
  EXPECT_EQ(FromUtf16Le(little), name);
  EXPECT_EQ(FromUtf16Le("a\0b"s), "a");  // an odd byte is dropped
  EXPECT_EQ(FromUtf16Be("\0a\x65\xE5\xD8\x3D\xDE\x00"s), "a\xE6\x97\xA5\xF0\x9F\x98\x80");
  EXPECT_EQ(FromUtf16Le("\x3D\xD8"s), "\xED\xA0\xBD");  // half a pair at the end
}

// ASCII is taken in one go, wherever it ends.
TEST(text, DecodesWhatFollowsAsciiOfAnyLength) {
  for (std::size_t length = 0; length < 20; ++length) {
    const std::string ascii = std::string("0123456789\0bcdefghijkl", 22).substr(22 - length);
    for (const std::string& rest : {""s, "\xC3\xA9z"s, "\xF0\x9F\x98\x80 a"s, "\xED\xA0\x80"s}) {
      const std::string all = ascii + rest;
      EXPECT_EQ(AsciiLength(all), length);
      EXPECT_EQ(FromUtf16Le(ToUtf16Le(all)), all);
      std::string appended = "\xFF";
      AppendUtf16Le(appended, ToUtf16Le(all) + "x");
      EXPECT_EQ(appended, "\xFF" + all);
      EXPECT_EQ(Length(all), ToUtf16Le(all).size() / 2);
      EXPECT_EQ(IsValidUtf8(all), rest != "\xED\xA0\x80");
      EXPECT_EQ(ToCp1252(all, Lacking::Utf8), ascii + (rest[0] == '\xC3' ? "\xE9z" : rest));
    }
    std::string latin = "\xC3\xA9";
    AppendLatin1(latin, ascii + "\x80z\xFF");
    EXPECT_EQ(latin, "\xC3\xA9" + ascii + "\xC2\x80z\xC3\xBF");
  }
}

TEST(text, GoesThroughCodePage1252AndBack) {
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  std::size_t lost = 0;
  EXPECT_EQ(ToCp1252(FromCp1252(all), Lacking::QuestionMark, &lost), all);
  EXPECT_EQ(lost, 0u);
  EXPECT_EQ(FromCp1252("\x80\x81\x9F\xE9"), "\xE2\x82\xAC\xC2\x81\xC5\xB8\xC3\xA9");
  EXPECT_EQ(ToCp1252("\xE6\x97\xA5\xC4\x80x\xE2\x90\x80", Lacking::QuestionMark, &lost), "??x\0"s);
  EXPECT_EQ(lost, 2u);
  EXPECT_EQ(ToCp1252("\xE6\x97\xA5\xFF", Lacking::Utf8, &lost), "\xE6\x97\xA5\xFF");
  EXPECT_EQ(lost, 3u);
}

TEST(text, ReadsNumbersAndTruth) {
  EXPECT_EQ(Val(" 12.5x"), 12.5);
  EXPECT_EQ(Val("x"), 0);
  for (const char* text : {"TRUE ", "-1"}) EXPECT_TRUE(ReadBoolean(text, false)) << text;
  for (const char* text : {"0", "False"}) EXPECT_FALSE(ReadBoolean(text, true)) << text;
  EXPECT_TRUE(ReadBoolean("", true));
  EXPECT_FALSE(ReadBoolean("1x", false));
  std::string stored = "a\0b\0"s;
  ReplaceNul(stored);
  EXPECT_EQ(stored, "a\u2400b\u2400");
  EXPECT_EQ(Trim("  \ta "), "\ta");
  EXPECT_EQ(TrimWhite(" \ta\t "), "a");
}

// No name of a machine may command a terminal, or read as what it isn't.
TEST(text, EscapesWhatATerminalWouldObey) {
  EXPECT_EQ(Escaped("a\x1B[31mb\tc\r\n\u202Ed\u0085\x7F\xFF \u00E9"),
            "a\\x1b[31mb\\tc\\r\\n\\u202ed\\x85\\x7f\\xff \u00E9");
}

}  // namespace
}  // namespace sandrel::text
