#include "browser/FormatCell.h"

#include <utility>

#include "common/modDateText.h"

namespace sandrel {

std::string AttributeLetters(std::int64_t attributes) {
  static constexpr std::pair<int, char> Letters[] = {
      {1, 'R'}, {2, 'H'}, {4, 'S'}, {16, 'F'}, {32, 'A'}};
  std::string letters;
  for (const auto& [bit, letter] : Letters) {
    if ((attributes & bit) != 0) letters += letter;
  }
  return letters;
}

std::string FormatCell(std::string_view fieldName, const dao::Value& value) {
  if (fieldName == "Attributes" || fieldName == "New Attributes" || fieldName == "Old Attributes") {
    return AttributeLetters(value.Integer());
  }
  if (fieldName == "Date" || fieldName == "New Date" || fieldName == "Old Date") {
    return LocalDateText(value.Text());
  }
  return value.ToText();
}

}  // namespace sandrel
