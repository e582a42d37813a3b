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

CellFormat::CellFormat(std::string_view fieldName) {
  for (const char* name : {"Attributes", "New Attributes", "Old Attributes"}) {
    if (fieldName == name) m_kind = Kind::Attributes;
  }
  for (const char* name : {"Date", "New Date", "Old Date"}) {
    if (fieldName == name) m_kind = Kind::Date;
  }
}

void CellFormat::Write(const dao::Value& value, std::string& cell) const {
  switch (m_kind) {
    case Kind::Attributes:
      cell = AttributeLetters(value.Integer());
      break;
    case Kind::Date:
      cell = LocalDateText(value.Text());
      break;
    case Kind::Plain:
      if (value.Type() == dao::Value::Kind::Text) {
        cell = value.Text();
      } else {
        cell = value.ToText();
      }
      break;
  }
}

std::string FormatCell(std::string_view fieldName, const dao::Value& value) {
  std::string cell;
  CellFormat(fieldName).Write(value, cell);
  return cell;
}

}  // namespace sandrel
