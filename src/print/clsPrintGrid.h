// A table of texts that is laid out on pages and drawn on a printer or on the pictures of a
// preview: the same code, so that a page of the preview is the printed page, scaled.
//
// Columns that don't fit across a page go on further pages (a band of columns each); a row is never
// split. Rows and columns count from 1; to the grid, the header is a row like others.
#pragma once

#include <string>
#include <string_view>

#include "config/clsSettings.h"
#include "platform/printing/clsPrintDevice.h"
#include "print/PrintErrors.h"
#include "print/clsGridCells.h"
#include "print/clsGridLayout.h"
#include "print/clsGridPages.h"
#include "print/clsMinColWidths.h"

namespace sandrel {

/// Where on the sheet the grid goes, inches. `PrintGrid` corrects what the printer can't do.
struct PrintArea {
  float LeftMargin = 0;
  float TopMargin = 0;
  float PrintWidth = 0;
  float PrintHeight = 0;
};

class clsPrintGrid {
 public:
  static constexpr int MaxColumns = clsGridCells::MaxColumns;
  static constexpr int MaxRows = clsGridCells::MaxRows;
  static constexpr double DefaultMinColumnWidth = 2.0;  ///< inches

  /// Takes the font from the settings, which must outlive the object.
  explicit clsPrintGrid(clsSettings& settings);
  /// Saves the font, where the settings don't hold it; those that can't be written cost no more.
  ~clsPrintGrid();
  clsPrintGrid(const clsPrintGrid&) = delete;
  clsPrintGrid& operator=(const clsPrintGrid&) = delete;

  /// Also gives every column the default least width: others are to be set after it. Raises 9 above
  /// `MaxColumns`.
  void SetNumColumns(int columns);
  int NumColumns() const { return m_numColumns; }
  /// Raises 9 above `MaxRows`.
  void SetNumRows(int rows);
  int NumRows() const { return m_numRows; }

  int Row = 1, Column = 1;  ///< the cell that `Value` means
  /// Raises 9 beyond the grid's limits, as setting does.
  std::string_view Value() const { return m_cells.Text(Row, Column); }
  void SetValue(std::string_view text) { m_cells.Set(Row, Column, text); }

  // For who makes the area that `PrintGrid` is given, inches.
  float PrintLeftMargin = 0.5F, PrintTopMargin = 0.5F;
  std::string Caption;  ///< the pages' heading
  clsMinColWidths MinColumnWidths;
  int VertPointsSpace = 2;   ///< points above and below each row's text
  int HorizPointsSpace = 3;  ///< points left and right of each cell's text
  int MaxFieldLength = 255;  ///< UTF-16 units; `PrintGrid` shortens longer cells for good
  PrintFont Font;
  /// Saves the font now. Raises what the settings' store raises.
  void SaveFont();

  /// Pages counted by the last `PrintGrid`.
  int NumPages() const { return m_numPages; }

  /// Gives the picture the size of the paper at this zoom, 1 to 200 %, and empties it. Gives back
  /// the scale for `PrintGrid`, which is that of the font as the picture took it.
  double ScalePicPreviewToPrinterInches(clsPrintDevice& picture, const clsPaper& paper,
                                        int zoomPercent) const;

  /// The text with blanks put in where a word is wider than `width` inches, so that it can wrap.
  /// May leave the device's scale mode at pixels, for the caller to restore; sets its font.
  std::string BreakIfNoSpaceIn(double width, const std::string& text, clsPrintDevice& device) const;

  /// Draws the pages of `range` on the pictures, from number 0, one picture more than pages may be
  /// loaded. `paper` is the printer's also here. True when a page was drawn. Nothing is measured
  /// again when only the range is another one. Raises `PrintMetrics`, `PageTooSmall`, 9 without
  /// rows, and what the devices raise; their scale modes are restored.
  bool PrintGrid(PrintArea& area, const clsPaper& paper, clsPictures& pictures, double scaleFactor,
                 PageRange range);
  /// Draws all pages on the printer, whose document has begun.
  bool PrintGrid(PrintArea& area, const clsPaper& paper, clsPrintDevice& printer,
                 double scaleFactor = 1.0);

 private:
  PrintFont ScaledFont(double scaleFactor) const;
  bool Print(PrintArea& area, const clsPaper& paper, clsPrintDevice& device, clsPictures* pictures,
             double scaleFactor, PageRange range);
  GridFrame FrameOf(PrintArea& area, const clsPaper& paper, clsPrintDevice& device,
                    double scaleFactor) const;
  void Measure(clsPrintDevice& device, double scaleFactor);

  clsSettings& m_settings;
  int m_numColumns = 1, m_numRows = 1;
  int m_numPages = 0;
  clsGridCells m_cells;
  clsGridLayout m_layout;
};

}  // namespace sandrel
