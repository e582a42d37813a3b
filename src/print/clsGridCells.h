// The texts of a printed grid's cells, each kept once: what repeats is measured once.
#pragma once

#include <string_view>
#include <vector>

#include "platform/controls/TextPool.h"

namespace sandrel {

class clsGridCells {
 public:
  static constexpr int MaxColumns = 20;
  static constexpr int MaxRows = 10000;

  // Rows and columns count from 1. All raise 9 beyond the limits.
  std::string_view Text(int row, int column) const { return m_texts.Text(Id(row, column)); }
  TextPool::Id Id(int row, int column) const;
  void Set(int row, int column, std::string_view text) { Set(row, column, m_texts.Intern(text)); }
  /// A number of this table's texts.
  void Set(int row, int column, TextPool::Id text);

  TextPool& Texts() { return m_texts; }
  const TextPool& Texts() const { return m_texts; }
  /// Changes with every cell that becomes another one.
  unsigned Version() const { return m_version; }

 private:
  static std::size_t Place(int row, int column);

  TextPool m_texts;
  std::vector<TextPool::Id> m_cells;  // as many rows as were set
  unsigned m_version = 0;
};

}  // namespace sandrel
