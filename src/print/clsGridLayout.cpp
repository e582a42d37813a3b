#include "print/clsGridLayout.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "common/text.h"
#include "print/PrintErrors.h"

namespace sandrel {
int GridScale::Pixels(double value) {
  constexpr double Most = 1e8;  // leaves sums room in an int
  const double rounded = std::nearbyint(value);
  if (!(std::abs(rounded) <= Most)) {
    throw clsError(errnum::Overflow, "Overflow", "clsPrintGrid.PrintGrid");
  }
  return static_cast<int>(rounded);
}

PrintRect clsGridLayout::SizeOf(std::string_view text, int width, clsPrintDevice& device) {
  return device.DrawText(text, {1, 1, 1 + width, 10},
                         drawtext::CalcRect | drawtext::NoClip | drawtext::WordBreak);
}

void clsGridLayout::Measure(const GridShape& shape, clsGridCells& cells, clsPrintDevice& device) {
  if (m_measured && shape == m_shape && cells.Version() == m_version) return;
  m_measured = false;
  m_shape = shape;
  m_narrow.clear();
  MeasureWidths(cells, device);
  MeasureHeights(cells, device);
  m_version = cells.Version();
  m_measured = true;
}

void clsGridLayout::MeasureWidths(clsGridCells& cells, clsPrintDevice& device) {
  const GridScale& scale = m_shape.Scale;
  m_widths.clear();
  for (int column = 1; column <= m_shape.Columns; ++column) {
    const double least = m_shape.MinWidths[static_cast<std::size_t>(column) - 1];
    int width = GridScale::Pixels(scale.X * least * scale.Factor);
    for (int row = 1; row <= m_shape.Rows; ++row) {
      const TextPool::Id text = Shortened(cells.Id(row, column), cells.Texts());
      cells.Set(row, column, text);
      width = std::max(width, NarrowOf(text, cells.Texts(), device).Right);
    }
    m_widths.push_back(width - 1);
  }
}

void clsGridLayout::MeasureHeights(const clsGridCells& cells, clsPrintDevice& device) {
  std::vector<int> heights(static_cast<std::size_t>(m_shape.Rows), 0);
  std::vector<int> bottoms;  // by text; 0 before it is measured in this column
  for (int column = 1; column <= m_shape.Columns; ++column) {
    const int width = m_widths[static_cast<std::size_t>(column) - 1];
    bottoms.assign(cells.Texts().Count(), 0);
    for (int row = 1; row <= m_shape.Rows; ++row) {
      const TextPool::Id text = cells.Id(row, column);
      int& bottom = bottoms[text];
      if (bottom == 0) {
        // The column is at least as wide as the widest word: one line stays one.
        const Narrow& narrow = NarrowOf(text, cells.Texts(), device);
        bottom = narrow.IsOneLine ? narrow.Bottom
                                  : SizeOf(cells.Texts().Text(text), width, device).Bottom;
      }
      int& height = heights[static_cast<std::size_t>(row) - 1];
      if (bottom > height) height = GridScale::Pixels(bottom + m_shape.Scale.Factor);
    }
  }
  for (int& height : heights) --height;
  m_heights = std::move(heights);
}

TextPool::Id clsGridLayout::Shortened(TextPool::Id text, TextPool& texts) const {
  const std::string_view whole = texts.Text(text);
  const auto limit = static_cast<std::size_t>(std::max(m_shape.MaxFieldLength, 0));
  if (whole.size() <= limit || text::Length(whole) <= limit) return text;
  return texts.Intern(std::string(text::Left(whole, std::max<std::size_t>(limit, 3) - 3)) + "...");
}

const clsGridLayout::Narrow& clsGridLayout::NarrowOf(TextPool::Id text, const TextPool& texts,
                                                     clsPrintDevice& device) {
  if (text >= m_narrow.size()) m_narrow.resize(texts.Count());
  Narrow& narrow = m_narrow[text];
  if (narrow.Right < 0) {
    const PrintRect size = SizeOf(texts.Text(text), 9, device);
    narrow = {size.Right, size.Bottom, size.Bottom - size.Top <= device.TextHeight()};
  }
  return narrow;
}

}  // namespace sandrel
