// Draws a grid that was measured, page by page: the rows, what stands on top of each page, and the
// boxes round the cells.
#pragma once

#include <string>
#include <vector>

#include "platform/printing/clsPrintDevice.h"
#include "print/clsGridCells.h"
#include "print/clsGridLayout.h"

namespace sandrel {

/// Where the grid stands on every page, pixels.
struct GridFrame {
  int Left = 0, Top = 0, Width = 0, Height = 0;
  int HorizSpace = 0;  ///< left and right of a cell's text
  int VertSpace = 0;   ///< above and below a row's text
  int LineHeight = 0;
};

/// The pages that are drawn; the others are counted alone.
struct PageRange {
  int FromPage = 1;
  int PageCount = 1;
};

class clsGridPages {
 public:
  /// All but `frame` and `font` must outlive the object. `pictures` is null for a printer, which
  /// draws all pages; otherwise `device` is picture 0. `font` is set again on each page.
  clsGridPages(const clsGridCells& cells, const clsGridLayout& layout, const GridFrame& frame,
               const std::string& caption, const PrintFont& font, clsPrintDevice& device,
               clsPictures* pictures, PageRange range);

  /// Raises `PageTooSmall`, and what the devices raise.
  void Run();

  /// The page that `Run` came to.
  int PageNumber() const { return m_page; }
  /// True when a page was drawn.
  bool PagePrinted() const { return m_printed; }

 private:
  int Width(int column) const { return m_widths[static_cast<std::size_t>(column) - 1]; }
  int Height(int row) const { return m_heights[static_cast<std::size_t>(row) - 1]; }
  int FirstTop() const { return m_frame.Top + m_frame.VertSpace + 2 * m_frame.LineHeight; }
  bool IsInRange(int page) const;

  void FindBand(int firstColumn);
  void BeginDrawing();
  void DrawRow(int row);
  bool Advance(int row);
  int EndPage(int row);
  void DrawPageEnd(int lastRow);
  void DrawBox(const PrintRect& box);
  void ChangeDevice();

  const clsGridCells& m_cells;
  std::vector<int> m_widths;  // a column that is wider than the page becomes narrower here
  const std::vector<int>& m_heights;
  const GridFrame m_frame;
  const std::string& m_caption;
  const PrintFont m_font;
  clsPrintDevice* m_device;
  clsPictures* const m_pictures;
  const PageRange m_range;
  const int m_rows, m_columns;

  int m_picture = 0;
  int m_page = 1;
  bool m_drawing = false, m_printed = false;
  int m_firstRow = 1;                       // of the page
  int m_firstColumn = 1, m_lastColumn = 0;  // of the band
  int m_top = 0, m_bottom = 0;              // of the row
};

}  // namespace sandrel
