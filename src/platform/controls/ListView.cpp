#include "platform/controls/ListView.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <unordered_set>
#include <utility>

#include "common/clsError.h"
#include "platform/controls/TextOrder.h"

namespace sandrel {

template <class Tell>
void ListView::Notify(bool& pending, Tell&& tell) {
  if (m_observer == nullptr) return;
  if (m_updates > 0) {
    pending = true;
  } else {
    tell(*m_observer);
  }
}

void ListView::NotifyRows() {
  Notify(m_rowsPending, [](ListViewObserver& observer) { observer.RowsChanged(); });
}

void ListView::NotifySelection() {
  Notify(m_selectionPending, [](ListViewObserver& observer) { observer.SelectionChanged(); });
}

void ListView::EndUpdate() {
  if (--m_updates > 0 || m_observer == nullptr) return;
  if (std::exchange(m_columnsPending, false)) m_observer->ColumnsChanged();
  if (std::exchange(m_rowsPending, false)) m_observer->RowsChanged();
  if (std::exchange(m_layoutPending, false)) m_observer->LayoutChanged();
  if (std::exchange(m_selectionPending, false)) m_observer->SelectionChanged();
}

void ListView::AddColumn(std::string text, int width) {
  m_columns.push_back({std::move(text), width, static_cast<int>(m_columns.size()) + 1});
  Notify(m_columnsPending, [](ListViewObserver& observer) { observer.ColumnsChanged(); });
}

void ListView::ClearColumns() {
  if (m_columns.empty()) return;
  m_columns.clear();
  Notify(m_columnsPending, [](ListViewObserver& observer) { observer.ColumnsChanged(); });
}

void ListView::SetWidth(std::size_t column, int twips) {
  if (m_columns[column].Width == twips) return;
  m_columns[column].Width = twips;
  Notify(m_layoutPending, [](ListViewObserver& observer) { observer.LayoutChanged(); });
}

void ListView::SetPosition(std::size_t column, int position) {
  if (position < 1 || static_cast<std::size_t>(position) > m_columns.size()) {
    throw clsError(errnum::IndexOutOfBounds, "Index out of bounds", "ListView.Position");
  }
  const int from = m_columns[column].Position;
  if (from == position) return;
  for (ListColumn& other : m_columns) {
    if (other.Position > from && other.Position <= position) --other.Position;
    if (other.Position < from && other.Position >= position) ++other.Position;
  }
  m_columns[column].Position = position;
  Notify(m_layoutPending, [](ListViewObserver& observer) { observer.LayoutChanged(); });
}

void ListView::SetHideColumnHeaders(bool hide) {
  if (m_hideHeaders == hide) return;
  m_hideHeaders = hide;
  Notify(m_layoutPending, [](ListViewObserver& observer) { observer.LayoutChanged(); });
}

void ListView::SetVisible(bool visible) {
  if (m_visible == visible) return;
  m_visible = visible;
  if (m_observer != nullptr) m_observer->VisibleChanged();
}

std::string_view ListView::Cell(std::size_t row, std::size_t cell) const {
  const Row& item = m_rows[row];
  return cell < item.CellCount ? m_texts.Text(m_cells[item.Cells + cell]) : std::string_view();
}

std::span<const TextPool::Id> ListView::Cells(std::size_t row) const {
  const Row& item = m_rows[row];
  return {m_cells.data() + item.Cells, item.CellCount};
}

std::string ListView::KeyText(std::size_t row) const {
  const RowKey key = Key(row);
  if (key.Statement == 0) return std::string(m_texts.Text(key.Number));
  if (key.Statement == 1) return fmt::format("key{}", key.Number);
  return fmt::format("key{}-{}", key.Number, key.Statement);
}

void ListView::ReserveRows(std::size_t rows, std::size_t cellsOfRow) {
  m_rows.reserve(rows);
  m_cells.reserve(rows * cellsOfRow);
}

void ListView::AddRow(RowKey key, std::span<const TextPool::Id> cells, int tag, int icon) {
  Row row;
  row.Cells = m_cells.size();
  row.Number = key.Number;
  row.Statement = key.Statement;
  row.CellCount = static_cast<std::uint16_t>(cells.size());
  row.Tag = static_cast<std::uint8_t>(tag);
  row.Icon = static_cast<std::uint8_t>(icon);
  m_cells.insert(m_cells.end(), cells.begin(), cells.end());
  m_rows.push_back(row);
  NotifyRows();
}

void ListView::SetCell(std::size_t row, std::size_t cell, std::string_view text) {
  const TextPool::Id id = m_texts.Intern(text);
  TextPool::Id& kept = m_cells[m_rows[row].Cells + cell];
  if (kept == id) return;
  kept = id;
  NotifyRows();
}

void ListView::ClearRows() {
  m_focus = NoRow;
  m_selected = 0;
  if (m_rows.empty()) return;
  ++m_filling;
  m_rows = {};  // what half a million rows took goes back
  m_cells = {};
  NotifyRows();
  NotifySelection();
}

// The cells of removed rows stay where they are until the list is cleared.
void ListView::RemoveRows(const std::function<bool(std::size_t row)>& isRemoved) {
  std::size_t kept = 0;
  std::size_t focus = NoRow;
  m_selected = 0;
  for (std::size_t row = 0; row < m_rows.size(); ++row) {
    const bool removed = isRemoved(row);
    if (row == m_focus) focus = kept;  // the row itself, or the one that takes its place
    if (removed) continue;
    m_selected += m_rows[row].Selected ? 1 : 0;
    m_rows[kept++] = m_rows[row];
  }
  if (kept == m_rows.size()) return;
  m_rows.resize(kept);
  m_focus = focus == kept && kept > 0 ? kept - 1 : focus;
  NotifyRows();
  NotifySelection();
}

void ListView::SetUnsorted() {
  if (!std::exchange(m_sorted, false)) return;
  Notify(m_layoutPending, [](ListViewObserver& observer) { observer.LayoutChanged(); });
}

void ListView::SetSortKeys(std::size_t key, bool descending) {
  m_sortKey = key;
  m_descending = descending;
  Notify(m_layoutPending, [](ListViewObserver& observer) { observer.LayoutChanged(); });
}

// Distinct texts are sorted and numbered first: half a million rows have few folders.
std::vector<std::uint32_t> ListView::RanksOfTexts(std::size_t key) const {
  std::vector<bool> seen(m_texts.Count());
  std::vector<TextPool::Id> distinct;
  for (const Row& row : m_rows) {
    const TextPool::Id id = IdOf(row, key);
    if (seen[id]) continue;
    seen[id] = true;
    distinct.push_back(id);
  }
  std::vector<std::uint32_t> ranks(m_texts.Count());
  RankTexts(m_texts, distinct, ranks);
  return ranks;
}

// Each rank's rows are counted, so that every row goes to its place at once.
void ListView::Sort(std::size_t key, bool descending) {
  m_sorted = true;
  SetSortKeys(key, descending);
  if (m_rows.size() < 2) return;
  const std::vector<std::uint32_t> ranks = RanksOfTexts(key);
  const std::uint32_t highest = *std::max_element(ranks.begin(), ranks.end());
  const auto placeOf = [&](const Row& row) {
    const std::uint32_t rank = ranks[IdOf(row, key)];
    return descending ? highest - rank : rank;
  };
  std::vector<std::size_t> next(highest + std::size_t{2});
  for (const Row& row : m_rows) ++next[placeOf(row) + 1];
  std::partial_sum(next.begin(), next.end(), next.begin());
  std::vector<Row> sorted(m_rows.size());
  std::size_t focus = NoRow;
  for (std::size_t row = 0; row < m_rows.size(); ++row) {
    const std::size_t place = next[placeOf(m_rows[row])]++;
    if (row == m_focus) focus = place;
    sorted[place] = m_rows[row];
  }
  m_rows = std::move(sorted);
  if (focus != NoRow) m_focus = focus;
  NotifyRows();
  NotifySelection();
}

void ListView::Select(std::size_t row, bool selected) {
  bool& flag = m_rows[row].Selected;
  if (flag == selected) return;
  flag = selected;
  selected ? ++m_selected : --m_selected;
  NotifySelection();
}

void ListView::SelectAll(bool selected) {
  if (m_selected == (selected ? m_rows.size() : 0)) return;
  for (Row& row : m_rows) row.Selected = selected;
  m_selected = selected ? m_rows.size() : 0;
  NotifySelection();
}

void ListView::SelectRange(std::size_t first, std::size_t last, bool selected) {
  BeginUpdate();
  for (std::size_t row = first; row <= last && row < m_rows.size(); ++row) Select(row, selected);
  EndUpdate();
}

void ListView::SelectOnlyRange(std::size_t first, std::size_t last) {
  if (last >= m_rows.size()) return;
  if (m_selected == last - first + 1 &&
      std::all_of(m_rows.begin() + static_cast<std::ptrdiff_t>(first),
                  m_rows.begin() + static_cast<std::ptrdiff_t>(last) + 1,
                  [](const Row& row) { return row.Selected; })) {
    return;
  }
  BeginUpdate();
  SelectAll(false);
  SelectRange(first, last, true);
  EndUpdate();
}

void ListView::SetSelectedItem(std::size_t row) {
  if (m_focus == row) return;
  m_focus = row;
  NotifySelection();
}

void ListView::SelectOnly(std::size_t row) {
  BeginUpdate();
  SetSelectedItem(row);
  if (row < m_rows.size()) {
    SelectOnlyRange(row, row);
  } else {
    SelectAll(false);
  }
  EndUpdate();
}

void ListView::SelectKeys(const std::vector<RowKey>& keys) {
  const std::unordered_set<RowKey, RowKeyHash> wanted(keys.begin(), keys.end());
  BeginUpdate();
  for (std::size_t row = 0; row < m_rows.size(); ++row) {
    if (wanted.count(Key(row)) != 0) Select(row, true);
  }
  EndUpdate();
}

std::vector<RowKey> ListView::SelectedKeys() const {
  std::vector<RowKey> keys;
  keys.reserve(m_selected);
  for (std::size_t row = 0; row < m_rows.size(); ++row) {
    if (m_rows[row].Selected) keys.push_back(Key(row));
  }
  return keys;
}

}  // namespace sandrel
