// The cells of the list that is printed, by row and column: "1-3" is the header of column 3.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sandrel {

struct clsField {
  int Row = 0;     ///< from 1, the header
  int Column = 0;  ///< from 1
  std::string Value;
};

class clsFields {
 public:
  /// Raises 457 when the cell is there already and 5 for a row or column below 1.
  void Add(int row, int column, std::string value);
  std::size_t Count() const { return m_fields.size(); }
  void Reserve(std::size_t fields) { m_fields.reserve(fields); }
  /// By its key, the decimal row, "-" and the decimal column. Raises 5 when there is none.
  const clsField& Item(std::string_view key) const;
  /// Null when there is none. It lives until the next field is added.
  const clsField* Find(int row, int column) const;

  /// The highest row and column of all fields; 0 without fields.
  int Rows() const { return static_cast<int>(m_places.size()); }
  int Columns() const { return m_columns; }

  // In the order of adding.
  auto begin() const { return m_fields.begin(); }
  auto end() const { return m_fields.end(); }

 private:
  std::vector<clsField> m_fields;
  /// By row and column from 0: one more than the field's place, 0 for a cell without a field.
  std::vector<std::vector<std::uint32_t>> m_places;
  int m_columns = 0;
};

}  // namespace sandrel
