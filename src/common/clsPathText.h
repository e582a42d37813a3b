// Parts of Windows paths and file names. Nothing here looks at a disk.
#pragma once

#include <string>
#include <string_view>

namespace sandrel {

class clsPathText {
 public:
  /// The text behind the last `separator`; the whole text when it has none.
  static std::string TextAfterLast(std::string_view text, std::string_view separator);
  /// The text before the last `separator`; empty when it has none.
  static std::string TextBeforeLast(std::string_view text, std::string_view separator);
  /// The extension of a file's name, without the dot; empty when the name has none.
  static std::string ExtensionOf(std::string_view name);
  /// The text with exactly one more `separator` at its end unless it ends in one already.
  static std::string AddSeparator(std::string_view path, std::string_view separator = "\\");
  /// The text without one trailing separator.
  static std::string RemoveSeparator(std::string_view path, std::string_view separator = "\\");
  /// A folder text as the scanners take it: slashes are backslashes, blanks at the ends and
  /// repeated backslashes are gone, a bare drive letter with its colon stays as it is.
  static std::string NormaliseFolder(std::string_view folder);
  /// The computer's name with two leading backslashes, from a name with or without them.
  static std::string MachineNameForConnect(std::string_view name);
  /// The bare computer name: no backslashes, no blanks at the ends.
  static std::string BareMachineName(std::string_view name);
};

}  // namespace sandrel
