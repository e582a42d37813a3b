// How wide the columns and how high the rows of a printed grid are on a device.
#pragma once

#include <string_view>
#include <vector>

#include "platform/printing/clsPrintDevice.h"
#include "print/clsGridCells.h"

namespace sandrel {

/// Pixels in an inch, and by how much the page is scaled.
struct GridScale {
  int X = 0, Y = 0;
  double Factor = 1;
  bool operator==(const GridScale&) const = default;

  /// To the nearest whole pixel, ties to even. Raises 6 for what no page has.
  static int Pixels(double value);
};

/// All that the sizes depend on, besides the texts.
struct GridShape {
  int Rows = 0, Columns = 0;
  std::vector<double> MinWidths;  ///< inches, of each column
  int MaxFieldLength = 0;         ///< UTF-16 units
  GridScale Scale;
  PrintFont Font;  ///< as the device took it
  bool OnPrinter = false;
  bool operator==(const GridShape&) const = default;
};

class clsGridLayout {
 public:
  /// Shortens the cells that are too long and measures all. Nothing when all is as it was the last
  /// time, as when a preview goes on to other pages.
  void Measure(const GridShape& shape, clsGridCells& cells, clsPrintDevice& device);

  /// Pixels, from column 1 and row 1 at 0, without the space round the texts.
  const std::vector<int>& Widths() const { return m_widths; }
  const std::vector<int>& Heights() const { return m_heights; }

  /// The rectangle, from 1 and 1, that a text needs which may be `width` pixels wide.
  static PrintRect SizeOf(std::string_view text, int width, clsPrintDevice& device);

 private:
  /// A text with every word on a line of its own.
  struct Narrow {
    int Right = -1;  // of the widest word; -1 before it is measured
    int Bottom = 0;
    bool IsOneLine = false;
  };

  void MeasureWidths(clsGridCells& cells, clsPrintDevice& device);
  void MeasureHeights(const clsGridCells& cells, clsPrintDevice& device);
  TextPool::Id Shortened(TextPool::Id text, TextPool& texts) const;
  const Narrow& NarrowOf(TextPool::Id text, const TextPool& texts, clsPrintDevice& device);

  GridShape m_shape;
  bool m_measured = false;
  unsigned m_version = 0;        // of the cells that were measured
  std::vector<Narrow> m_narrow;  // by text
  std::vector<int> m_widths, m_heights;
};

}  // namespace sandrel
