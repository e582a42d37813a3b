// A field: its definition, and inside a recordset its value in the current record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/dao/Value.h"

namespace sandrel::dao {

/// Field types, by the engine's numbers.
enum class FieldType : std::uint8_t {
  Boolean = 1,
  Integer = 3,
  Long = 4,
  Double = 7,
  Date = 8,
  Text = 10,
  Memo = 12
};

/// Attribute of a Long field whose value the store hands out, from 1 upward.
inline constexpr int AutoIncrement = 16;

struct Field {
  std::string Name;
  FieldType Type = FieldType::Memo;
  int Size = 0;  ///< most UTF-16 units of a Text field; 0 where there is no limit
  bool Required = false;
  bool AllowZeroLength = false;
  int Attributes = 0;

  bool IsAutoIncrement() const { return (Attributes & AutoIncrement) != 0; }
  bool IsText() const { return Type == FieldType::Text || Type == FieldType::Memo; }
};

}  // namespace sandrel::dao
