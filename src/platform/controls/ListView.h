// A list with columns, as a plain model: what the program's code works on. A view, where there is
// one, follows it through an observer and raises its events.
//
// Columns and rows are numbered from 0; a column's `Position` on the screen counts from 1. Rows
// stand in the order in which they are shown. Widths are in twips (1440 to the inch).
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/TextPool.h"

namespace sandrel {

/// What identifies a row: its number from 1 in its statement and the statement's number (1 to 3);
/// or, with statement 0, a text.
struct RowKey {
  std::uint32_t Number = 0;
  std::uint8_t Statement = 0;
  bool operator==(const RowKey&) const = default;
};

struct RowKeyHash {
  std::size_t operator()(RowKey key) const {
    return std::hash<std::uint64_t>()(std::uint64_t{key.Statement} << 32 | key.Number);
  }
};

struct ListColumn {
  std::string Text;
  int Width = 0;
  int Position = 0;
};

/// What a view does when the list changes.
class ListViewObserver {
 public:
  virtual ~ListViewObserver() = default;
  virtual void ColumnsChanged() = 0;    ///< there are others, or their texts changed
  virtual void LayoutChanged() = 0;     ///< widths, positions, hidden headers, shown sort
  virtual void RowsChanged() = 0;       ///< there are others, or they stand in another order
  virtual void SelectionChanged() = 0;  ///< the selected rows, or the one with the focus
  virtual void VisibleChanged() = 0;
};

class ListView {
 public:
  static constexpr std::size_t NoRow = std::numeric_limits<std::size_t>::max();

  /// The pool must outlive the list; it is shared by all lists that copy rows from each other.
  explicit ListView(TextPool& texts) : m_texts(texts) {}
  ListView(const ListView&) = delete;
  ListView& operator=(const ListView&) = delete;

  std::string Tag;
  /// At most one view; null for none.
  void SetObserver(ListViewObserver* observer) { m_observer = observer; }

  // Columns.
  const std::vector<ListColumn>& Columns() const { return m_columns; }
  void AddColumn(std::string text, int width);
  void ClearColumns();
  void SetWidth(std::size_t column, int twips);
  /// Moves the column; those between make room. Raises 35600 for a position without a column.
  void SetPosition(std::size_t column, int position);
  bool HideColumnHeaders() const { return m_hideHeaders; }
  void SetHideColumnHeaders(bool hide);

  /// Width of the whole control in twips, told by the form's layout.
  int Width = 0;
  bool Visible() const { return m_visible; }
  void SetVisible(bool visible);

  // Rows.
  std::size_t RowCount() const { return m_rows.size(); }
  std::string_view Text(std::size_t row) const { return m_texts.Text(TextId(row)); }
  TextPool::Id TextId(std::size_t row) const { return m_cells[m_rows[row].Cells]; }
  /// A cell's text; empty where the row has no such sub-item. Cell 0 is the row's text.
  std::string_view Cell(std::size_t row, std::size_t cell) const;
  /// The row's cells: its text and its sub-items.
  std::span<const TextPool::Id> Cells(std::size_t row) const;
  int RowTag(std::size_t row) const { return m_rows[row].Tag; }
  /// Index in the image list.
  int SmallIcon(std::size_t row) const { return m_rows[row].Icon; }
  RowKey Key(std::size_t row) const { return {m_rows[row].Number, m_rows[row].Statement}; }
  /// "key7", "key7-2", or the text of a text key.
  std::string KeyText(std::size_t row) const;
  RowKey TextKey(std::string_view text) { return {m_texts.Intern(text), 0}; }

  TextPool& Texts() { return m_texts; }
  const TextPool& Texts() const { return m_texts; }
  /// Cells are numbers of the list's pool. Between `BeginUpdate` and `EndUpdate`, or the view
  /// follows every single row.
  void AddRow(RowKey key, std::span<const TextPool::Id> cells, int tag, int icon);
  void SetCell(std::size_t row, std::size_t cell, std::string_view text);
  void ClearRows();
  /// Removes the rows that the test names.
  void RemoveRows(const std::function<bool(std::size_t row)>& isRemoved);
  /// Changes when the rows become others altogether, and stays when they are sorted, added to or
  /// some are removed.
  unsigned Filling() const { return m_filling; }
  void ReserveRows(std::size_t rows, std::size_t cellsOfRow);

  /// Changes between the two reach the view at the end, in one go. They nest.
  void BeginUpdate() { ++m_updates; }
  void EndUpdate();

  // Order. Rows are sorted on the displayed text without regard to case; equal ones keep their
  // order. A list that isn't `Sorted` leaves its rows where they are.
  bool Sorted() const { return m_sorted; }
  std::size_t SortKey() const { return m_sortKey; }
  bool Descending() const { return m_descending; }
  void SetUnsorted();
  /// Without sorting: for a list that shows its rows in their own order.
  void SetSortKeys(std::size_t key, bool descending);
  void Sort(std::size_t key, bool descending);

  // Selection.
  bool Selected(std::size_t row) const { return m_rows[row].Selected; }
  std::size_t SelectedCount() const { return m_selected; }
  void Select(std::size_t row, bool selected);
  void SelectAll(bool selected);
  /// The rows from `first` to `last`, both included.
  void SelectRange(std::size_t first, std::size_t last, bool selected);
  /// These rows and no others; nothing is told when that is so already.
  void SelectOnlyRange(std::size_t first, std::size_t last);
  /// What a list that takes one row does: this row is selected, no other, and has the focus.
  void SelectOnly(std::size_t row);
  /// Selects the rows of these keys besides those that are selected.
  void SelectKeys(const std::vector<RowKey>& keys);
  std::vector<RowKey> SelectedKeys() const;
  /// The row with the focus; NoRow for none.
  std::size_t SelectedItem() const { return m_focus < m_rows.size() ? m_focus : NoRow; }
  void SetSelectedItem(std::size_t row);

  // What the user did. Unset events do nothing.
  std::function<void(std::size_t column)> ColumnClick;
  std::function<void()> DblClick, ItemClick, GotFocus, LostFocus;
  std::function<void(int keyCode)> KeyUp;

 private:
  struct Row {
    std::size_t Cells = 0;     // where they begin
    std::uint32_t Number = 0;  // of the key
    std::uint16_t CellCount = 0;
    std::uint8_t Statement = 0;
    std::uint8_t Tag = 0;
    std::uint8_t Icon = 0;
    bool Selected = false;
  };

  TextPool::Id IdOf(const Row& row, std::size_t cell) const {
    return cell < row.CellCount ? m_cells[row.Cells + cell] : TextPool::Empty;
  }
  std::vector<std::uint32_t> RanksOfTexts(std::size_t key) const;
  template <class Tell>
  void Notify(bool& pending, Tell&& tell);
  void NotifyRows();
  void NotifySelection();

  TextPool& m_texts;
  ListViewObserver* m_observer = nullptr;
  std::vector<ListColumn> m_columns;
  std::vector<Row> m_rows;
  std::vector<TextPool::Id> m_cells;
  bool m_hideHeaders = false;
  bool m_visible = false;
  bool m_sorted = false;
  bool m_descending = false;
  std::size_t m_sortKey = 0;
  std::size_t m_selected = 0;
  std::size_t m_focus = NoRow;
  unsigned m_filling = 0;
  int m_updates = 0;
  bool m_columnsPending = false, m_layoutPending = false, m_rowsPending = false,
       m_selectionPending = false;
};

}  // namespace sandrel
