// The tree on the screen.
#pragma once

#include <QTreeView>

#include "platform/controls/TreeView.h"
#include "platform/qt/modInput.h"

namespace sandrel {

class clsTreeModel;

/// Shows a TreeView and raises its events. What the user does reaches the tree first, its events
/// after. The tree must outlive the widget, which is its observer.
class clsTreeWidget final : public QTreeView, private TreeViewObserver {
  Q_OBJECT

 public:
  clsTreeWidget(TreeView& tree, QWidget* parent);
  ~clsTreeWidget() override;

  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

 protected:
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void initViewItemOption(QStyleOptionViewItem* option) const override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void TellCollapsed();
  void NodeGoing(Node* parent) override;
  void NodeAdded(Node& node) override;
  void ChildrenGoing(Node& node) override;
  void ChildrenRemoved(Node& node) override;
  void ChildrenComing(Node& node, std::size_t count) override;
  void ChildrenAdded(Node& node) override;
  void Clearing() override;
  void Cleared() override;
  void Changed(Node& node) override;
  void ExpansionChanged(Node* node, bool deep) override;
  void SelectionChanged() override;
  void Shown(Node& node) override;

  void ApplyExpansion(const Node& node);
  void ApplyExpansion(const std::vector<std::unique_ptr<Node>>& nodes);

  TreeView& m_tree;
  clsTreeModel* m_model;
  QPersistentModelIndex m_pressed;    // the node that the left button went down on
  QPersistentModelIndex m_collapsed;  // to be told
  bool m_atWork = false;              // Qt is, on a click or key
  bool m_ownCurrent = false;          // Qt looks for a current node by itself
  bool m_looksChanged = false;        // Qt is to be told
  qt::clsKeysDown m_keys;
};

}  // namespace sandrel
