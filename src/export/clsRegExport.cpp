#include "export/clsRegExport.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

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

// The text as the file can hold it.
std::string InCodePage(std::string_view value, std::size_t* lost) {
  return text::FromCp1252(text::ToCp1252(value, text::Lacking::QuestionMark, lost));
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
    m_lost = 0;
    const std::string content = text::ToCp1252(Lines(), text::Lacking::QuestionMark, &m_lost);
    clsFileWorks::ReplaceWhole(fileName, content);
  });
}

std::string clsRegExport::Lines() {
  std::string lines = std::string("REGEDIT4") + LineEnd;
  std::string lastBranch;
  for (const clsRegEntry& entry : RegEntrys.Items()) {
    if (text::Lower(entry.Branch) != text::Lower(lastBranch)) {
      lines += LineEnd + ("[" + entry.Branch + "]") + LineEnd;
      lastBranch = entry.Branch;
    }
    const std::string name = QuoteValueName(entry.ValueName);
    try {
      lines +=
          name + "=" + FormatValue(entry.Value, entry.RegType, text::Length(name) + 1, &m_lost);
    } catch (const clsError& error) {
      throw error.WithDescription(fmt::format("The value {} of the key {} can't be exported. {}",
                                              name, entry.Branch, error.Description()));
    }
    lines += LineEnd;
    if (DoEvents) DoEvents();
  }
  return lines;
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
  if (keyLength >= FirstLineLimit) {
    throw clsError(errnum::InvalidArgument, "Its name is too long for a value of this type.");
  }
  std::string result;
  std::size_t limit = FirstLineLimit - keyLength;
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
                                      std::size_t keyLength, std::size_t* lost) {
  const auto hex = [&](const std::string& text) {
    return text::Lower(WrapHexText(text, keyLength));
  };
  switch (regType) {
    case 1:
      return "\"" + ReplaceChar('"', "\\\"", ReplaceChar('\\', "\\\\", value)) + "\"";
    case 4:
      return text::Lower("dword:" + PadHex8(value));
    case 5:
      return text::Lower("hex(5):" + CommaSeparateDword(PadHex8(value)));
    case 3:
      return hex("hex:" + ReplaceChar(' ', ",", value));
    case 0:
    case 2:
      return hex(fmt::format("hex({:x}):", regType) +
                 ReplaceChar(' ', ",", clsScanReg::DecodeBinary(InCodePage(value, lost))) + ",00");
    default:
      return hex(fmt::format("hex({:x}):", regType) + ReplaceChar(' ', ",", value));
  }
}

}  // namespace sandrel
