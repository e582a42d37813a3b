// How a field's value reads in a cell of a page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/dao/Value.h"

namespace sandrel {

/// The rule of one column, known by the field's name.
class CellFormat {
 public:
  explicit CellFormat(std::string_view fieldName);

  /// Makes `cell` the value's text: attributes become letters, dates local time in the user's
  /// format; Null is an empty cell.
  void Write(const dao::Value& value, std::string& cell) const;

 private:
  enum class Kind : std::uint8_t { Plain, Attributes, Date };
  Kind m_kind = Kind::Plain;
};

/// The same for a single value.
std::string FormatCell(std::string_view fieldName, const dao::Value& value);

/// The letters of a file's attributes: "R", "H", "S", "F" (folder), "A".
std::string AttributeLetters(std::int64_t attributes);

}  // namespace sandrel
