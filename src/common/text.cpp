#include "common/text.h"

#include <fmt/format.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwctype>

namespace sandrel::text {
namespace {

constexpr char32_t StrayByte = 0x110000;
constexpr char32_t StoredNul = 0x2400;

bool IsContinuation(unsigned char byte) {
  return (byte & 0xC0u) == 0x80u;
}

// Case tables of the C library's own UTF-8 locale, which every Debian system has built in. They do
// not depend on the user's locale.
locale_t CaseLocale() {
  static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return locale;
}

constexpr char32_t AsciiLower(char32_t c) {
  return c >= U'A' && c <= U'Z' ? c + 32 : c;
}

constexpr char32_t AsciiUpper(char32_t c) {
  return c >= U'a' && c <= U'z' ? c - 32 : c;
}

// The code page's characters for bytes 80 to 9F; the rest of the page is Latin-1.
constexpr char16_t Cp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

int Cp1252Byte(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<int>(c);
  if (c >= StrayByte) return static_cast<int>(c - StrayByte);
  for (int i = 0; i < 32; ++i) {
    if (Cp1252High[i] == c) return 0x80 + i;
  }
  return -1;
}

// `map` turns ASCII into ASCII; most text has nothing else, and needs no decoding then.
template <class Map>
std::string MapCharacters(std::string_view text, Map&& map) {
  const std::size_t ascii = AsciiLength(text);
  std::string result(text.substr(0, ascii));
  for (char& c : result) c = static_cast<char>(map(static_cast<char32_t>(c)));
  if (ascii == text.size()) return result;
  result.reserve(text.size());
  for (std::size_t i = ascii; i < text.size();) Append(result, map(Next(text, i)));
  return result;
}

// Most text is ASCII, which gives one byte for every unit; what follows it is decoded.
void AppendUtf16(std::string& text, std::string_view bytes, std::size_t low, std::size_t high) {
  const std::size_t start = text.size();
  const std::size_t units = bytes.size() / 2;
  text.resize(start + units);
  char* const out = text.data() + start;
  std::size_t ascii = 0;
  for (; ascii < units; ++ascii) {
    const auto byte = static_cast<unsigned char>(bytes[2 * ascii + low]);
    if (byte >= 0x80 || bytes[2 * ascii + high] != 0) break;
    out[ascii] = static_cast<char>(byte);
  }
  if (ascii == units) return;
  text.resize(start + ascii);
  text.reserve(start + ascii + (units - ascii) * 2);

  const auto unit = [&](std::size_t at) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[at + low]) |
                                 static_cast<unsigned char>(bytes[at + high]) << 8);
  };
  for (std::size_t i = 2 * ascii; i + 1 < bytes.size(); i += 2) {
    char32_t c = unit(i);
    if (c >= 0xD800 && c < 0xDC00 && i + 3 < bytes.size()) {
      const char32_t second = unit(i + 2);
      if (second >= 0xDC00 && second < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + (second - 0xDC00);
        i += 2;
      }
    }
    Append(text, c);
  }
}

}  // namespace

std::size_t AsciiLength(std::string_view text) {
  constexpr std::uint64_t HighBits = 0x8080808080808080u;
  std::size_t length = 0;
  for (std::uint64_t eight = 0; length + sizeof eight <= text.size(); length += sizeof eight) {
    std::memcpy(&eight, text.data() + length, sizeof eight);
    if ((eight & HighBits) != 0) break;
  }
  while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80) ++length;
  return length;
}

char32_t Next(std::string_view text, std::size_t& position) {
  const auto byte = [&](std::size_t offset) {
    return static_cast<unsigned char>(text[position + offset]);
  };
  const unsigned char first = byte(0);
  if (first < 0x80) {
    ++position;
    return first;
  }
  const std::size_t left = text.size() - position;
  if (first >= 0xC2 && first < 0xE0 && left >= 2 && IsContinuation(byte(1))) {
    const char32_t c = (first & 0x1Fu) << 6 | (byte(1) & 0x3Fu);
    position += 2;
    return c;
  }
  if (first >= 0xE0 && first < 0xF0 && left >= 3 && IsContinuation(byte(1)) &&
      IsContinuation(byte(2))) {
    const char32_t c = (first & 0x0Fu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu);
    if (c >= 0x800) {
      position += 3;
      return c;
    }
  }
  if (first >= 0xF0 && first < 0xF5 && left >= 4 && IsContinuation(byte(1)) &&
      IsContinuation(byte(2)) && IsContinuation(byte(3))) {
    const char32_t c = (first & 0x07u) << 18 | (byte(1) & 0x3Fu) << 12 | (byte(2) & 0x3Fu) << 6 |
                       (byte(3) & 0x3Fu);
    if (c >= 0x10000 && c < 0x110000) {
      position += 4;
      return c;
    }
  }
  ++position;
  return StrayByte + first;
}

void Append(std::string& text, char32_t c) {
  if (c < 0x80) {
    text.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    text.push_back(static_cast<char>(0xC0 | c >> 6));
    text.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    text.push_back(static_cast<char>(0xE0 | c >> 12));
    text.push_back(static_cast<char>(0x80 | (c >> 6 & 0x3F)));
    text.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < StrayByte) {
    text.push_back(static_cast<char>(0xF0 | c >> 18));
    text.push_back(static_cast<char>(0x80 | (c >> 12 & 0x3F)));
    text.push_back(static_cast<char>(0x80 | (c >> 6 & 0x3F)));
    text.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    text.push_back(static_cast<char>(c - StrayByte));
  }
}

bool IsValidUtf8(std::string_view text) {
  for (std::size_t i = AsciiLength(text); i < text.size();) {
    const char32_t c = Next(text, i);
    if (c >= StrayByte || (c >= 0xD800 && c < 0xE000)) return false;
  }
  return true;
}

std::size_t Length(std::string_view text) {
  std::size_t units = AsciiLength(text);
  for (std::size_t i = units; i < text.size();) {
    const char32_t c = Next(text, i);
    units += c >= 0x10000 && c < StrayByte ? 2 : 1;
  }
  return units;
}

std::string_view Left(std::string_view text, std::size_t units) {
  std::size_t end = 0;
  while (end < text.size()) {
    std::size_t next = end;
    const char32_t c = Next(text, next);
    const std::size_t width = c >= 0x10000 && c < StrayByte ? 2 : 1;
    if (width > units) break;
    units -= width;
    end = next;
  }
  return text.substr(0, end);
}

char32_t Fold(char32_t c) {
  if (c < 0x80) return AsciiLower(c);
  if (c >= StrayByte) return c;
  // Through the upper case first, so that letters with two small forms (as the Greek sigma) agree.
  const wint_t upper = towupper_l(static_cast<wint_t>(c), CaseLocale());
  return static_cast<char32_t>(towlower_l(upper, CaseLocale()));
}

std::string Fold(std::string_view text) {
  return MapCharacters(text, [](char32_t c) { return Fold(c); });
}

std::string FoldAscii(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return result;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (Fold(Next(a, i)) != Fold(Next(b, j))) return false;
  }
  return i == a.size() && j == b.size();
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < text.size() && j < prefix.size()) {
    if (Fold(Next(text, i)) != Fold(Next(prefix, j))) return false;
  }
  return j == prefix.size();
}

std::string Lower(std::string_view text) {
  return MapCharacters(text, [](char32_t c) {
    if (c < 0x80) return AsciiLower(c);
    return c >= StrayByte ? c
                          : static_cast<char32_t>(towlower_l(static_cast<wint_t>(c), CaseLocale()));
  });
}

std::string Upper(std::string_view text) {
  return MapCharacters(text, [](char32_t c) {
    if (c < 0x80) return AsciiUpper(c);
    return c >= StrayByte ? c
                          : static_cast<char32_t>(towupper_l(static_cast<wint_t>(c), CaseLocale()));
  });
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string_view TrimWhite(std::string_view text) {
  const auto white = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && white(text.front())) text.remove_prefix(1);
  while (!text.empty() && white(text.back())) text.remove_suffix(1);
  return text;
}

void AppendUtf16Le(std::string& text, std::string_view bytes) {
  AppendUtf16(text, bytes, 0, 1);
}
std::string FromUtf16Le(std::string_view bytes) {
  std::string result;
  AppendUtf16(result, bytes, 0, 1);
  return result;
}
std::string FromUtf16Be(std::string_view bytes) {
  std::string result;
  AppendUtf16(result, bytes, 1, 0);
  return result;
}

std::string ToUtf16Le(std::string_view text) {
  std::string result;
  result.reserve(text.size() * 2);
  const auto unit = [&](char32_t c) {
    result.push_back(static_cast<char>(c & 0xFF));
    result.push_back(static_cast<char>(c >> 8 & 0xFF));
  };
  for (std::size_t i = 0; i < text.size();) {
    char32_t c = Next(text, i);
    if (c >= StrayByte) c -= StrayByte;
    if (c >= 0x10000) {
      unit(0xD800 + ((c - 0x10000) >> 10));
      unit(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      unit(c);
    }
  }
  return result;
}

void AppendLatin1(std::string& text, std::string_view bytes) {
  const std::size_t ascii = AsciiLength(bytes);
  text.append(bytes, 0, ascii);
  for (const char byte : bytes.substr(ascii)) Append(text, static_cast<unsigned char>(byte));
}

std::string FromCp1252(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    Append(result, value >= 0x80 && value < 0xA0 ? Cp1252High[value - 0x80] : value);
  }
  return result;
}

std::string ToCp1252(std::string_view text, Lacking lacking, std::size_t* lost) {
  std::string result;
  result.reserve(text.size());
  result.append(text, 0, AsciiLength(text));
  for (std::size_t i = result.size(); i < text.size();) {
    const std::size_t start = i;
    const char32_t c = Next(text, i);
    const int byte = c == StoredNul ? 0 : Cp1252Byte(c);
    if (byte >= 0) {
      result.push_back(static_cast<char>(byte));
      continue;
    }
    if (lost != nullptr) ++*lost;
    if (lacking == Lacking::Utf8) {
      result.append(text.substr(start, i - start));
    } else {
      result.push_back('?');
    }
  }
  return result;
}

void ReplaceNul(std::string& text) {
  if (text.find('\0') == std::string::npos) return;
  std::string result;
  result.reserve(text.size() + 16);
  for (const char c : text) {
    if (c == '\0') {
      Append(result, StoredNul);
    } else {
      result.push_back(c);
    }
  }
  text = std::move(result);
}

std::string WithNul(std::string_view text) {
  return MapCharacters(text, [](char32_t c) { return c == StoredNul ? U'\0' : c; });
}

bool IsControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x061C || c == 0x200E || c == 0x200F ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t start = i;
    const char32_t c = Next(text, i);
    constexpr char32_t LastCharacter = 0x10FFFF;  // above it are bytes that are no UTF-8
    if (c > LastCharacter) {
      escaped += fmt::format("\\x{:02x}", static_cast<unsigned char>(text[start]));
    } else if (!IsControl(c)) {
      escaped.append(text, start, i - start);
    } else if (c == '\n' || c == '\r' || c == '\t') {
      escaped += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
    } else {
      escaped += c < 0x100 ? fmt::format("\\x{:02x}", static_cast<std::uint32_t>(c))
                           : fmt::format("\\u{:04x}", static_cast<std::uint32_t>(c));
    }
  }
  return escaped;
}

double Val(std::string_view text) {
  const std::string trimmed(TrimWhite(text));
  return std::strtod(trimmed.c_str(), nullptr);
}

std::string BooleanText(bool value) {
  return value ? "True" : "False";
}

bool ReadBoolean(std::string_view text, bool fallback) {
  const std::string folded = FoldAscii(TrimWhite(text));
  if (folded == "true") return true;
  if (folded == "false") return false;
  char* end = nullptr;
  const double number = std::strtod(folded.c_str(), &end);
  return folded.empty() || *end != '\0' ? fallback : number != 0;
}

}  // namespace sandrel::text
