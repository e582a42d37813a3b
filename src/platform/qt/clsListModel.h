// A list for Qt's views.
#pragma once

#include <QAbstractTableModel>

#include "platform/controls/ListView.h"

namespace sandrel {

/// Decodes a cell when it is asked for. The numbers of rows and columns are those of the last
/// Reset, however the list grows meanwhile: a page that is being filled may be painted. The list
/// must outlive it.
class clsListModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  clsListModel(ListView& list, QObject* parent) : QAbstractTableModel(parent), m_list(list) {}

  /// There are other rows or columns.
  void Reset();
  /// NoRow for an invalid index, and for a row that the list no longer has.
  std::size_t RowOf(const QModelIndex& index) const;
  /// Invalid for a row that isn't shown yet, or NoRow.
  QModelIndex IndexOf(std::size_t row) const;

  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex& parent) const override;
  bool hasChildren(const QModelIndex& parent) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  ListView& m_list;
  int m_rows = 0, m_columns = 0;
};

}  // namespace sandrel
