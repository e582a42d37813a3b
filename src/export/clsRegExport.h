// Writes registry values as a file that a registry editor imports: the REGEDIT4 format, in code
// page 1252, lines ending in CR LF.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

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

  /// Sorts, and puts the values in the place of the file at the host path, whole or not at all.
  /// What the format can't carry is left out: a reader gets exactly the values that were written.
  /// Without any that can be written there is no file.
  void WriteFile(const std::string& fileName);

  /// How many values the last file has.
  std::size_t Written() const { return m_written; }
  /// The others, each as its key, its name and why; empty when there are none.
  const std::vector<std::string>& LeftOut() const { return m_leftOut; }
  /// What a box tells of them: how many, and the first ones; empty when there are none.
  std::string LeftOutText() const;

  // The parts of the format; texts are UTF-8.
  static std::string QuoteValueName(std::string_view name);
  /// Raises 5 for what the format can't carry, and what `PadHex8` raises.
  static std::string FormatValue(std::string_view value, std::int32_t regType,
                                 std::size_t keyLength);
  /// Four pairs of digits, joined with commas.
  static std::string CommaSeparateDword(std::string_view hex8);
  /// Breaks behind the first comma at or past the 77th character of the line, the first line's
  /// count beginning at `keyLength`; behind a longer key behind the first comma.
  static std::string WrapHexText(std::string_view text, std::size_t keyLength);
  /// The number's eight hexadecimal digits in capitals. Raises 6 for a text that is no number of 32
  /// bits, 13 for one that is no number.
  static std::string PadHex8(std::string_view value);
  static std::string ReplaceChar(char find, std::string_view replacement, std::string_view text);

 private:
  static std::string Line(const clsRegEntry& entry);
  std::string Lines();

  std::size_t m_written = 0;
  std::vector<std::string> m_leftOut;
};

}  // namespace sandrel
