#include "print/clsGridCells.h"

#include "print/PrintErrors.h"

namespace sandrel {

std::size_t clsGridCells::Place(int row, int column) {
  if (row < 1 || row > MaxRows || column < 1 || column > MaxColumns) {
    throw clsError(errnum::SubscriptOutOfRange, "Subscript out of range", "clsPrintGrid.Value");
  }
  return static_cast<std::size_t>(row - 1) * MaxColumns + static_cast<std::size_t>(column - 1);
}

TextPool::Id clsGridCells::Id(int row, int column) const {
  const std::size_t place = Place(row, column);
  return place < m_cells.size() ? m_cells[place] : TextPool::Empty;
}

void clsGridCells::Set(int row, int column, TextPool::Id text) {
  const std::size_t place = Place(row, column);
  if (place >= m_cells.size()) {
    if (text == TextPool::Empty) return;
    m_cells.resize(static_cast<std::size_t>(row) * MaxColumns, TextPool::Empty);
  }
  if (m_cells[place] == text) return;
  m_cells[place] = text;
  ++m_version;
}

}  // namespace sandrel
