#include "print/clsGridPages.h"

#include <string_view>

#include "print/PrintErrors.h"

namespace sandrel {

clsGridPages::clsGridPages(const clsGridCells& cells, const clsGridLayout& layout,
                           const GridFrame& frame, const std::string& caption,
                           const PrintFont& font, clsPrintDevice& device, clsPictures* pictures,
                           PageRange range)
    : m_cells(cells),
      m_widths(layout.Widths()),
      m_heights(layout.Heights()),
      m_frame(frame),
      m_caption(caption),
      m_font(font),
      m_device(&device),
      m_pictures(pictures),
      m_range(range),
      m_rows(static_cast<int>(m_heights.size())),
      m_columns(static_cast<int>(m_widths.size())) {}

void clsGridPages::Run() {
  if (m_rows == 0 || m_columns == 0) {
    throw clsError(errnum::SubscriptOutOfRange, "Subscript out of range", "clsGridPages.Run");
  }
  FindBand(1);
  m_top = FirstTop();
  m_bottom = m_top + Height(1);
  if (IsInRange(1)) BeginDrawing();
  for (int row = 1; row <= m_rows; ++row) {
    DrawRow(row);
    if (!Advance(row)) row = EndPage(row);
  }
  if (m_drawing) DrawPageEnd(m_rows);
}

bool clsGridPages::IsInRange(int page) const {
  return m_pictures == nullptr ||
         (page >= m_range.FromPage && page - m_range.FromPage < m_range.PageCount);
}

/// Finds the last column that has room on the page beside `firstColumn`; it may overhang by as much
/// as the space on one side of a text.
void clsGridPages::FindBand(int firstColumn) {
  const int around = 2 * m_frame.HorizSpace;
  int available = m_frame.Width - around;
  m_firstColumn = m_lastColumn = firstColumn;
  if (Width(firstColumn) + around > available) {
    if (available < 1) {
      throw clsError(errnum::PageTooSmall, "The page is too small for a column.",
                     "clsGridPages.FindBand");
    }
    m_widths[static_cast<std::size_t>(firstColumn) - 1] = available;
    return;
  }
  for (int column = firstColumn; column <= m_columns; ++column) {
    available -= Width(column) + around;
    if (m_frame.HorizSpace + available < 0) return;
    m_lastColumn = column;
  }
}

void clsGridPages::BeginDrawing() {
  m_drawing = m_printed = true;
  if (m_pictures != nullptr) m_device->Cls();
}

void clsGridPages::DrawRow(int row) {
  if (!m_drawing) return;
  int left = m_frame.Left + m_frame.HorizSpace;
  for (int column = m_firstColumn; column <= m_lastColumn; ++column) {
    const int right = left + Width(column);
    m_device->DrawText(m_cells.Text(row, column), {left, m_top, right, m_bottom},
                       drawtext::WordBreak);
    left = right + 2 * m_frame.HorizSpace;
  }
}

/// Moves below `row`. False when the page ends there: its successor has no room, or the last row is
/// out and columns are left. A page's first row is never tested, so that one higher than the page
/// gets its own.
bool clsGridPages::Advance(int row) {
  m_top = (row == 1 ? m_bottom : m_top + Height(row)) + 2 * m_frame.VertSpace;
  if (row < m_rows) m_bottom = m_top + Height(row + 1);
  if (row == m_rows && m_lastColumn < m_columns) return false;
  return m_frame.VertSpace - m_frame.Top + m_bottom < m_frame.Height;
}

/// Finishes the page and begins the next one. Gives back the row before its first: the rows go on,
/// or come again with the next band of columns.
int clsGridPages::EndPage(int row) {
  if (m_drawing) DrawPageEnd(row);
  ChangeDevice();
  m_device->SetFont(m_font);
  // The first row of the page takes its rectangle from the row before it, and is clipped by it.
  m_top = FirstTop();
  m_bottom = m_top + Height(row);
  int nextColumn = 1;
  if (m_lastColumn == m_columns) {
    m_firstRow = row + 1;
  } else {
    nextColumn = m_lastColumn + 1;
    row = m_firstRow - 1;
    m_bottom = m_top + Height(row == 0 ? 1 : row);
  }
  FindBand(nextColumn);
  ++m_page;
  m_drawing = false;
  if (IsInRange(m_page)) BeginDrawing();
  return row;
}

void clsGridPages::DrawPageEnd(int lastRow) {
  // The heading's right edge is the page's width, whatever stands left of it.
  const PrintRect heading{m_frame.Left, m_frame.Top, m_frame.Width,
                          m_frame.Top + 2 * m_frame.LineHeight};
  m_device->DrawText(m_caption, heading, drawtext::WordBreak);
  m_device->DrawText("Page " + std::to_string(m_page), heading, drawtext::Right);
  int top = heading.Bottom;
  for (int row = m_firstRow; row <= lastRow; ++row) {
    const int bottom = top + Height(row) + 2 * m_frame.VertSpace;
    int left = m_frame.Left;
    for (int column = m_firstColumn; column <= m_lastColumn; ++column) {
      const int right = left + Width(column) + 2 * m_frame.HorizSpace;
      DrawBox({left, top, right, bottom});
      left = right;
    }
    top = bottom;
  }
}

void clsGridPages::DrawBox(const PrintRect& box) {
  m_device->Line(box.Left, box.Top, box.Right, box.Top);
  m_device->Line(box.Right, box.Top, box.Right, box.Bottom);
  m_device->Line(box.Right, box.Bottom, box.Left, box.Bottom);
  m_device->Line(box.Left, box.Bottom, box.Left, box.Top);
}

void clsGridPages::ChangeDevice() {
  if (m_pictures == nullptr) {
    m_device->NewPage();
  } else if (m_drawing || m_page == m_range.FromPage + m_range.PageCount) {
    m_pictures->Load(++m_picture);
    m_device = &m_pictures->Item(m_picture);
  }
}

}  // namespace sandrel
