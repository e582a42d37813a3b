// Paints the cells of tree and lists.
#pragma once

#include <QStyledItemDelegate>

namespace sandrel {

/// Gives rows some air and shows what is selected in grey while the view lacks the focus.
class clsCellDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
  /// Whether the cell is painted as selected; by default, as the view's selection has it.
  virtual bool IsSelected(const QStyleOptionViewItem& option, const QModelIndex& index) const;
};

}  // namespace sandrel
