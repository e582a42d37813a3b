#include "platform/qt/clsListSelection.h"

#include <QScopedValueRollback>

#include "platform/qt/clsListModel.h"

namespace sandrel {
namespace {
constexpr int MostRuns = 250;
}

clsListSelection::clsListSelection(ListView& list, clsListModel& model, QObject* parent)
    : QItemSelectionModel(&model, parent), m_list(list), m_model(model) {}

// The selected rows as runs; the row with the focus alone when they are too many.
QItemSelection clsListSelection::Runs() const {
  const int lastColumn = m_model.columnCount({}) - 1;
  const std::size_t rows =
      std::min(m_list.RowCount(), static_cast<std::size_t>(m_model.rowCount({})));
  QItemSelection runs;
  if (lastColumn < 0) return runs;
  const auto add = [&](std::size_t first, std::size_t last) {
    runs.append(QItemSelectionRange(m_model.index(static_cast<int>(first), 0),
                                    m_model.index(static_cast<int>(last), lastColumn)));
  };
  std::size_t left = m_list.SelectedCount();
  for (std::size_t row = 0; row < rows && left > 0; ++row) {
    if (!m_list.Selected(row)) continue;
    const std::size_t first = row;
    while (row + 1 < rows && m_list.Selected(row + 1)) ++row;
    left -= row - first + 1;
    add(first, row);
    if (runs.size() > MostRuns) {
      runs.clear();
      const std::size_t focus = m_list.SelectedItem();
      if (focus < rows && m_list.Selected(focus)) add(focus, focus);
      break;
    }
  }
  return runs;
}

void clsListSelection::Mirror() {
  const QScopedValueRollback mirroring(m_mirroring, true);
  QItemSelectionModel::select(Runs(), ClearAndSelect);
  const QModelIndex current = m_model.IndexOf(m_list.SelectedItem());
  if (current.row() == currentIndex().row()) return;
  setCurrentIndex(current, NoUpdate);
}

void clsListSelection::select(const QModelIndex& index, SelectionFlags command) {
  select(QItemSelection(index, index), command);
}

void clsListSelection::select(const QItemSelection& selection, SelectionFlags command) {
  if (m_mirroring) {
    QItemSelectionModel::select(selection, command);
    return;
  }
  m_list.BeginUpdate();
  if (command.testFlag(Clear)) m_list.SelectAll(false);
  for (const QItemSelectionRange& range : selection) {
    const std::size_t end =
        std::min(m_list.RowCount(), static_cast<std::size_t>(range.bottom()) + 1);
    for (std::size_t row = static_cast<std::size_t>(range.top()); row < end; ++row) {
      if (command.testFlag(Select)) m_list.Select(row, true);
      if (command.testFlag(Deselect)) m_list.Select(row, false);
      if (command.testFlag(Toggle)) m_list.Select(row, !m_list.Selected(row));
    }
  }
  m_list.EndUpdate();
}

void clsListSelection::setCurrentIndex(const QModelIndex& index, SelectionFlags command) {
  if (m_mirroring) {
    QItemSelectionModel::setCurrentIndex(index, command);
    return;
  }
  m_list.BeginUpdate();
  m_list.SetSelectedItem(m_model.RowOf(index));
  select(index, command);
  m_list.EndUpdate();
}

void clsListSelection::clear() {
  if (m_mirroring) {
    QItemSelectionModel::clear();
  } else {
    m_list.SelectOnly(ListView::NoRow);
  }
}

// Qt's side starts anew with the model; the rows keep their flags.
void clsListSelection::reset() {
  const QScopedValueRollback mirroring(m_mirroring, true);
  QItemSelectionModel::reset();
}

}  // namespace sandrel
