// The tree for Qt's views.
#pragma once

#include <QAbstractItemModel>

#include "platform/controls/TreeView.h"

namespace sandrel {

/// Reads the nodes where they are; the tree must outlive it. Whoever observes the tree tells of
/// changes through the functions that are named after the observer's.
class clsTreeModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  clsTreeModel(TreeView& tree, QObject* parent) : QAbstractItemModel(parent), m_tree(tree) {}

  /// Null for an invalid index.
  static Node* NodeOf(const QModelIndex& index);
  /// Invalid for null.
  QModelIndex IndexOf(const Node* node) const;

  void NodeGoing(const Node* parent);
  void NodeAdded() { endInsertRows(); }
  void ChildrenGoing(const Node& node);
  void ChildrenRemoved() { endRemoveRows(); }
  void ChildrenComing(const Node& node, std::size_t count);
  void ChildrenAdded() { endInsertRows(); }
  void Clearing() { beginResetModel(); }
  void Cleared() { endResetModel(); }
  /// Pictures or fonts of any nodes. The view is told of the roots, which makes it measure all.
  void LooksChanged();

  QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex&) const override { return 1; }
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  TreeView& m_tree;
};

}  // namespace sandrel
