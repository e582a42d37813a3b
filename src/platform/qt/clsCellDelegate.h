// Paints the cells of tree and lists.
#pragma once

#include <QStyledItemDelegate>

namespace sandrel {

/// Lets the cells, and what surrounds them, show their selection in grey, as a view without the
/// focus does.
void ShowUnfocused(QStyleOptionViewItem& option);

/// Gives rows some air.
class clsCellDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace sandrel
