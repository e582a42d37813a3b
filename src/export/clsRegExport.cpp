#include "export/clsRegExport.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/text.h"
#include "scan/clsScanReg.h"

namespace sandrel {
namespace {

constexpr const char* LineEnd = "\r\n";
constexpr std::size_t FirstLineLimit = 77;
constexpr std::size_t NextLineLimit = 74;

// Orders UTF-8 texts as their UTF-16 units compare: characters beyond the first 65,536 come as
// surrogates, before U+E000.
int CompareUnits(std::string_view a, std::string_view b) {
  const auto [first, second] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  if (first == a.end() || second == b.end()) {
    return static_cast<int>(first != a.end()) - static_cast<int>(second != b.end());
  }
  const auto rank = [](char c) {
    const int byte = static_cast<unsigned char>(c);
    return byte == 0xEE || byte == 0xEF ? byte + 0x10 : byte;
  };
  return rank(*first) - rank(*second);
}

std::string KeyOf(const clsRegEntry& entry) {
  return entry.Branch + "\\" + entry.ValueName;
}

clsError CantCarry(std::string_view what) {
  return {errnum::InvalidArgument, fmt::format("{} can't stand in a registry file.", what)};
}

// The bytes of the text in the file's code page.
std::string InCodePage(std::string_view text) {
  std::size_t lost = 0;
  std::string bytes = text::ToCp1252(text, text::Lacking::QuestionMark, &lost);
  if (lost > 0) throw CantCarry("A letter that code page 1252 lacks");
  return bytes;
}

bool HasControls(std::string_view bytes) {
  return std::any_of(bytes.begin(), bytes.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; });
}

// The name that a reader takes from a line; nothing where it takes the line for none of a value.
std::optional<std::string> NameRead(std::string_view line) {
  if (line.starts_with('@')) return "";
  std::string name;
  std::size_t at = 1;
  for (; at < line.size() && line[at] != '"'; ++at) {
    if (line[at] == '\\' && ++at == line.size()) return {};
    name += line[at];
  }
  at = line.find_first_not_of(" \t", at + 1);
  if (at == std::string_view::npos || line[at] != '=') return {};
  return name;
}

// The letters of a list of strings stand as bytes in the analysis: those of the code page, and
// those of UTF-8 for others, which a reader would take for other letters.
void NeedLetters(std::string_view hex) {
  std::string bytes;
  for (std::size_t at = 0; at + 2 <= hex.size(); at += 3) {
    unsigned int byte = 0;
    std::from_chars(hex.data() + at, hex.data() + at + 2, byte, 16);
    bytes.push_back(static_cast<char>(byte));
  }
  constexpr char32_t LastLetter = 0x10FFFF;  // above it are bytes that are no UTF-8
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t start = at;
    const char32_t letter = text::Next(bytes, at);
    if (letter >= 0x80 && letter <= LastLetter)
      InCodePage(std::string_view(bytes).substr(start, at - start));
  }
}

}  // namespace

void clsRegExport::SortRegEnteries() {
  RaiseAs("clsRegExport.SortRegEnteries", [&] {
    std::vector<clsRegEntry>& entries = RegEntrys.Items();
    std::vector<std::pair<std::string, std::size_t>> order;
    order.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) order.emplace_back(KeyOf(entries[i]), i);
    std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) {
      return CompareUnits(a.first, b.first) < 0;
    });
    std::vector<clsRegEntry> sorted;
    sorted.reserve(entries.size());
    for (const auto& [key, index] : order) sorted.push_back(std::move(entries[index]));
    entries = std::move(sorted);
  });
}

void clsRegExport::WriteFile(const std::string& fileName) {
  RaiseAs("clsRegExport.WriteFile", [&] {
    SortRegEnteries();
    const std::string content = text::ToCp1252(Lines(), text::Lacking::QuestionMark);
    if (m_written > 0) clsFileWorks::ReplaceWhole(fileName, content);
  });
}

std::string clsRegExport::Lines() {
  m_written = 0;
  m_leftOut.clear();
  std::string lines = std::string("REGEDIT4") + LineEnd;
  std::string lastBranch;
  for (const clsRegEntry& entry : RegEntrys.Items()) {
    if (DoEvents) DoEvents();
    std::string line;
    try {
      line = Line(entry);
    } catch (const clsError& error) {
      m_leftOut.push_back(
          fmt::format("{} {}: {}", entry.Branch,
                      entry.ValueName.empty() ? "(Default)" : '"' + entry.ValueName + '"',
                      error.Description()));
      continue;
    }
    if (text::Lower(entry.Branch) != text::Lower(lastBranch)) {
      lines += LineEnd + ("[" + entry.Branch + "]") + LineEnd;
      lastBranch = entry.Branch;
    }
    lines += line + LineEnd;
    ++m_written;
  }
  return lines;
}

// The line of a value. Names are quoted as they are, so that one that holds a quote or a backslash
// would be read as another one, or not at all.
std::string clsRegExport::Line(const clsRegEntry& entry) {
  if (HasControls(InCodePage(entry.Branch + entry.ValueName))) {
    throw CantCarry("A name with control characters");
  }
  const std::string name = QuoteValueName(entry.ValueName);
  std::string line = name + "=" + FormatValue(entry.Value, entry.RegType, text::Length(name) + 1);
  if (NameRead(line) != entry.ValueName) {
    throw CantCarry("A name with quotes or backslashes");
  }
  return line;
}

std::string clsRegExport::LeftOutText() const {
  constexpr std::size_t MostNamed = 20;
  if (m_leftOut.empty()) return {};
  std::string told = fmt::format("{} value(s) were left out:", m_leftOut.size());
  for (std::size_t i = 0; i < std::min(m_leftOut.size(), MostNamed); ++i) {
    told += "\n    " + m_leftOut[i];
  }
  if (m_leftOut.size() > MostNamed) {
    told += fmt::format("\n    and {} more", m_leftOut.size() - MostNamed);
  }
  return told;
}

std::string clsRegExport::QuoteValueName(std::string_view name) {
  return name.empty() ? "@" : fmt::format("\"{}\"", name);
}

std::string clsRegExport::ReplaceChar(char find, std::string_view replacement,
                                      std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (c == find) {
      result += replacement;
    } else {
      result += c;
    }
  }
  return result;
}

std::string clsRegExport::PadHex8(std::string_view value) {
  const std::string_view digits = text::Trim(value);
  std::int64_t number = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (digits.empty() || failure == std::errc::invalid_argument ||
      end != digits.data() + digits.size()) {
    throw clsError(errnum::TypeMismatch, fmt::format("'{}' is no number.", value));
  }
  if (failure != std::errc() || number < INT32_MIN || number > INT32_MAX) {
    throw clsError(errnum::Overflow, fmt::format("{} is no number of 32 bits.", value));
  }
  return fmt::format("{:08X}", static_cast<std::uint32_t>(number));
}

std::string clsRegExport::CommaSeparateDword(std::string_view hex8) {
  return fmt::format("{},{},{},{}", hex8.substr(0, 2), hex8.substr(2, 2), hex8.substr(4, 2),
                     hex8.substr(6, 2));
}

std::string clsRegExport::WrapHexText(std::string_view text, std::size_t keyLength) {
  std::string result;
  std::size_t limit = FirstLineLimit - std::min(keyLength, FirstLineLimit - 1);
  for (;;) {
    const std::size_t comma = text.find(',', limit - 1);
    if (comma == std::string_view::npos) break;
    result += text.substr(0, comma + 1);
    result += "\\\r\n  ";
    text.remove_prefix(comma + 1);
    limit = NextLineLimit;
  }
  result += text;
  return result;
}

std::string clsRegExport::FormatValue(std::string_view value, std::int32_t regType,
                                      std::size_t keyLength) {
  const auto hex = [&](std::string_view pairs) {
    const std::string type =
        regType == 3 ? "hex:" : fmt::format("hex({:x}):", static_cast<std::uint32_t>(regType));
    return text::Lower(WrapHexText(type + ReplaceChar(' ', ",", pairs), keyLength));
  };
  const auto textBytes = [&] {
    InCodePage(value);
    // An editor takes no line whose bytes begin with a comma.
    return hex(clsScanReg::DecodeBinary(value) + (value.empty() ? "00" : ",00"));
  };
  switch (regType) {
    case 1:
      // A text that would end its line goes out as bytes.
      if (HasControls(InCodePage(value))) return textBytes();
      return "\"" + ReplaceChar('"', "\\\"", ReplaceChar('\\', "\\\\", value)) + "\"";
    case 4:
      return text::Lower("dword:" + PadHex8(value));
    case 5:
      return text::Lower("hex(5):" + CommaSeparateDword(PadHex8(value)));
    case 0:
    case 2:
      return textBytes();
    case 7:
      NeedLetters(value);
      return hex(value);
    default:
      return hex(value);
  }
}

}  // namespace sandrel
