#include "platform/qt/clsTreeWidget.h"

#include <QFocusEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <utility>

#include "platform/qt/clsCellDelegate.h"
#include "platform/qt/clsTreeModel.h"
#include "platform/qt/modCellText.h"
#include "platform/qt/modGuard.h"

namespace sandrel {

clsTreeWidget::clsTreeWidget(TreeView& tree, QWidget* parent)
    : QTreeView(parent), m_tree(tree), m_model(new clsTreeModel(tree, this)) {
  setItemDelegate(new clsCellDelegate(this));
  setModel(m_model);
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setEditTriggers(NoEditTriggers);
  setHorizontalScrollMode(ScrollPerPixel);
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  qt::Connect(this, &QTreeView::expanded, this, [this](const QModelIndex& index) {
    m_tree.SetExpanded(*clsTreeModel::NodeOf(index), true);
  });
  qt::Connect(this, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
    m_collapsed = index;
    if (!m_atWork) TellCollapsed();
  });
  qt::Connect(this, &QTreeView::pressed, this,
              [this](const QModelIndex& index) { m_pressed = index; });
  m_tree.SetObserver(this);
  ApplyExpansion(m_tree.Roots());
  SelectionChanged();
}

clsTreeWidget::~clsTreeWidget() {
  m_tree.SetObserver(nullptr);
}

// The tree's changes.

void clsTreeWidget::NodeGoing(Node* parent) {
  m_model->NodeGoing(parent);
}

void clsTreeWidget::NodeAdded(Node&) {
  m_model->NodeAdded();
}

void clsTreeWidget::ChildrenGoing(Node& node) {
  m_model->ChildrenGoing(node);
}

void clsTreeWidget::ChildrenRemoved(Node&) {
  m_model->ChildrenRemoved();
}

void clsTreeWidget::ChildrenComing(Node& node, std::size_t count) {
  m_model->ChildrenComing(node, count);
}

void clsTreeWidget::ChildrenAdded(Node& node) {
  m_model->ChildrenAdded();
  ApplyExpansion(node.Children());
}

void clsTreeWidget::Clearing() {
  m_model->Clearing();
}

void clsTreeWidget::Cleared() {
  m_model->Cleared();
}

// One click changes the marks of many nodes, and whenever Qt is told of a change it measures the
// whole column: it is told once for all of them.
void clsTreeWidget::Changed(Node&) {
  viewport()->update();
  if (std::exchange(m_looksChanged, true)) return;
  qt::Later(this, [this] {
    m_looksChanged = false;
    m_model->LooksChanged();
  });
}

void clsTreeWidget::ApplyExpansion(const Node& node) {
  setExpanded(m_model->IndexOf(&node), node.Expanded());
}

// With a layout pending the view only notes what is expanded, and lays all out once.
void clsTreeWidget::ApplyExpansion(const std::vector<std::unique_ptr<Node>>& nodes) {
  scheduleDelayedItemsLayout();
  for (const auto& node : nodes) {
    ApplyExpansion(*node);
    if (!node->Children().empty()) ApplyExpansion(node->Children());
  }
}

void clsTreeWidget::ExpansionChanged(Node* node, bool deep) {
  if (node != nullptr) ApplyExpansion(*node);
  if (deep) ApplyExpansion(node == nullptr ? m_tree.Roots() : node->Children());
}

void clsTreeWidget::SelectionChanged() {
  if (m_tree.SelectedItem() == nullptr) {
    selectionModel()->clear();
  } else {
    selectionModel()->setCurrentIndex(m_model->IndexOf(m_tree.SelectedItem()),
                                      QItemSelectionModel::ClearAndSelect);
  }
}

void clsTreeWidget::Shown(Node& node) {
  scrollTo(m_model->IndexOf(&node));
}

// What the user does.

void clsTreeWidget::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTreeView::currentChanged(current, previous);
  if (current.isValid() && !m_ownCurrent) m_tree.SetSelectedItem(clsTreeModel::NodeOf(current));
}

QItemSelectionModel::SelectionFlags clsTreeWidget::selectionCommand(const QModelIndex& index,
                                                                    const QEvent*) const {
  return index.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

// A node that is scrolled into view keeps its level on the screen where its text can be seen.
void clsTreeWidget::scrollTo(const QModelIndex& index, ScrollHint hint) {
  const int before = horizontalScrollBar()->value();
  QTreeView::scrollTo(index, hint);
  horizontalScrollBar()->setValue(before);
  const int left = visualRect(index).left();
  const int room = viewport()->width();
  if (left < 0 || left > room * 3 / 4) {
    horizontalScrollBar()->setValue(before + left - room / 4);
  }
}

void clsTreeWidget::initViewItemOption(QStyleOptionViewItem* option) const {
  QTreeView::initViewItemOption(option);
  if (!hasFocus()) ShowUnfocused(*option);
}

bool clsTreeWidget::viewportEvent(QEvent* event) {
  return qt::Guard(this, [&] {
    if (event->type() != QEvent::ToolTip) return QTreeView::viewportEvent(event);
    qt::ShowCutTip(*this, *static_cast<QHelpEvent*>(event));
    return true;
  });
}

// What a collapsed node raises may close the analysis: it waits until Qt is done with the click or
// key and holds no index any more.
void clsTreeWidget::TellCollapsed() {
  Node* const node = clsTreeModel::NodeOf(std::exchange(m_collapsed, {}));
  if (node != nullptr) m_tree.SetExpanded(*node, false);
}

void clsTreeWidget::mousePressEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    m_pressed = QModelIndex();
    if (event->button() != Qt::LeftButton) return;
    {
      const QScopedValueRollback atWork(m_atWork, true);
      QTreeView::mousePressEvent(event);
    }
    TellCollapsed();
  });
}

void clsTreeWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    {
      const QScopedValueRollback atWork(m_atWork, true);
      QTreeView::mouseDoubleClickEvent(event);
    }
    TellCollapsed();
  });
}

// The node that was pressed stays the current one, wherever the mouse is let go.
void clsTreeWidget::mouseMoveEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    if (event->buttons() == Qt::NoButton) QTreeView::mouseMoveEvent(event);
  });
}

void clsTreeWidget::mouseReleaseEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    QTreeView::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || !m_pressed.isValid()) return;
    Node& node = *clsTreeModel::NodeOf(m_pressed);
    m_pressed = QModelIndex();
    m_tree.SetSelectedItem(&node);
    if (m_tree.NodeClick) m_tree.NodeClick(node);
    if (m_tree.Click) m_tree.Click();
  });
}

void clsTreeWidget::keyPressEvent(QKeyEvent* event) {
  qt::Guard(this, [&] {
    m_keys.Press(*event);
    {
      const QScopedValueRollback atWork(m_atWork, true);
      QTreeView::keyPressEvent(event);
    }
    TellCollapsed();
  });
}

void clsTreeWidget::keyReleaseEvent(QKeyEvent* event) {
  qt::Guard(this, [&] {
    QTreeView::keyReleaseEvent(event);
    const int code = m_keys.Release(*event);
    if (code != 0 && m_tree.KeyUp) m_tree.KeyUp(code);
  });
}

void clsTreeWidget::focusInEvent(QFocusEvent* event) {
  qt::Guard(this, [&] {
    {
      const QScopedValueRollback own(m_ownCurrent, true);
      QTreeView::focusInEvent(event);
    }
    SelectionChanged();
    viewport()->update();
    if (m_tree.GotFocus) m_tree.GotFocus();
  });
}

void clsTreeWidget::focusOutEvent(QFocusEvent* event) {
  qt::Guard(this, [&] {
    QTreeView::focusOutEvent(event);
    m_keys.Forget();
    viewport()->update();
  });
}

void clsTreeWidget::resizeEvent(QResizeEvent* event) {
  qt::Guard(this, [&] {
    QTreeView::resizeEvent(event);
    header()->setMinimumSectionSize(viewport()->width());
  });
}

}  // namespace sandrel
