#include "platform/qt/clsListModel.h"

#include "platform/controls/ImageKeys.h"
#include "platform/qt/Icons.h"
#include "platform/qt/modCellText.h"

namespace sandrel {

void clsListModel::Reset() {
  beginResetModel();
  m_rows = static_cast<int>(m_list.RowCount());
  m_columns = static_cast<int>(m_list.Columns().size());
  endResetModel();
}

std::size_t clsListModel::RowOf(const QModelIndex& index) const {
  const std::size_t row = static_cast<std::size_t>(index.row());
  return index.isValid() && row < m_list.RowCount() ? row : ListView::NoRow;
}

QModelIndex clsListModel::IndexOf(std::size_t row) const {
  const bool shown = row < static_cast<std::size_t>(m_rows);
  return shown ? index(static_cast<int>(row), 0) : QModelIndex();
}

int clsListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : m_rows;
}

namespace {

// What a picture tells beside the kind of thing: "new", "changed" or "deleted".
QString StateOf(std::string_view key) {
  for (const char* state : {"new", "changed", "deleted"}) {
    if (key.starts_with(state)) return state;
  }
  return {};
}

}  // namespace

int clsListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : m_columns;
}

bool clsListModel::hasChildren(const QModelIndex& parent) const {
  return !parent.isValid() && m_rows > 0 && m_columns > 0;
}

// That rows never have children saves the view a question for each.
Qt::ItemFlags clsListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

QVariant clsListModel::data(const QModelIndex& index, int role) const {
  const std::size_t row = RowOf(index);
  if (row == ListView::NoRow) return {};
  const std::size_t column = static_cast<std::size_t>(index.column());
  if (role == Qt::DisplayRole) return qt::ShownText(m_list.Cell(row, column));
  if (role == Qt::DecorationRole && column == 0) {
    const std::size_t icon = static_cast<std::size_t>(m_list.SmallIcon(row));
    if (icon < ImageKeys.size()) return icons::Image(ImageKeys[icon]);
  }
  if (role == Qt::AccessibleDescriptionRole && column == 0) {
    const std::size_t icon = static_cast<std::size_t>(m_list.SmallIcon(row));
    if (icon < ImageKeys.size()) return StateOf(ImageKeys[icon]);
  }
  return {};
}

QVariant clsListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const std::size_t column = static_cast<std::size_t>(section);
  if (orientation != Qt::Horizontal || column >= m_list.Columns().size()) return {};
  if (role == Qt::DisplayRole) return qt::ShownText(m_list.Columns()[column].Text);
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
  return {};
}

}  // namespace sandrel
