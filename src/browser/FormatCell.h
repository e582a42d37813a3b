// How a field's value reads in a cell of a page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/dao/Value.h"

namespace sandrel {

/// Attributes become letters, dates local time in the user's format; Null is an empty cell.
std::string FormatCell(std::string_view fieldName, const dao::Value& value);

/// The letters of a file's attributes: "R", "H", "S", "F" (folder), "A".
std::string AttributeLetters(std::int64_t attributes);

}  // namespace sandrel
