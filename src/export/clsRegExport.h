// Writes registry values as a file that a registry editor imports: the REGEDIT4 format, in code
// page 1252, lines ending in CR LF.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "export/clsRegEntry.h"

namespace sandrel {

class clsRegExport {
 public:
  clsRegEntrys RegEntrys;

  /// Lets window messages through, once an entry.
  std::function<void()> DoEvents;

  /// Orders the entries by branch and name, exactly and with regard to case; equal ones keep their
  /// order.
  void SortRegEnteries();

  /// Sorts, and puts the values in the place of the file at the host path. Raises 5 for a value
  /// that the format has no room for and 6 for a number that isn't one of 32 bits; the description
  /// names the value, and a file that stood there is left as it was.
  void WriteFile(const std::string& fileName);

  /// Characters of the last file that code page 1252 lacks; "?" stands in their place.
  std::size_t Lost() const { return m_lost; }

  // The parts of the format; texts are UTF-8.
  static std::string QuoteValueName(std::string_view name);
  /// `lost`, when given, is raised by the number of characters that the code page lacks where they
  /// are written as bytes.
  static std::string FormatValue(std::string_view value, std::int32_t regType,
                                 std::size_t keyLength, std::size_t* lost = nullptr);
  /// Four pairs of digits, joined with commas.
  static std::string CommaSeparateDword(std::string_view hex8);
  /// Breaks behind the first comma at or past the 77th character of the line, the first line's
  /// count beginning at `keyLength`.
  static std::string WrapHexText(std::string_view text, std::size_t keyLength);
  /// The number's eight hexadecimal digits in capitals. Raises 6 for a text that is no number of 32
  /// bits, 13 for one that is no number.
  static std::string PadHex8(std::string_view value);
  static std::string ReplaceChar(char find, std::string_view replacement, std::string_view text);

 private:
  std::string Lines();

  std::size_t m_lost = 0;
};

}  // namespace sandrel
