#include "platform/qt/clsListWidget.h"

#include <QApplication>
#include <QFocusEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTimerEvent>

#include "platform/qt/clsCellDelegate.h"
#include "platform/qt/clsListModel.h"
#include "platform/qt/clsListSelection.h"
#include "platform/qt/modCellText.h"
#include "platform/qt/modGuard.h"
#include "platform/qt/modTwips.h"

namespace sandrel {
namespace {

constexpr int LeastColumn = 8;   // pixels; a narrower column could not be found again
constexpr int ScrollPause = 40;  // milliseconds

// What is selected is the rows' own matter, and the focus is the whole row's.
class clsRowDelegate : public clsCellDelegate {
 public:
  clsRowDelegate(const ListView& list, const clsListModel& model, QObject* parent)
      : clsCellDelegate(parent), m_list(list), m_model(model) {}

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    clsCellDelegate::initStyleOption(option, index);
    const std::size_t row = m_model.RowOf(index);
    const bool selected = row != ListView::NoRow && m_list.Selected(row);
    option->state.setFlag(QStyle::State_Selected, selected);
    option->state.setFlag(QStyle::State_HasFocus, false);
  }

 private:
  const ListView& m_list;
  const clsListModel& m_model;
};

}  // namespace

clsListWidget::clsListWidget(ListView& list, QWidget* parent)
    : QTreeView(parent),
      m_list(list),
      m_model(new clsListModel(list, this)),
      m_selection(new clsListSelection(list, *m_model, this)),
      m_filling(list.Filling()) {
  setItemDelegate(new clsRowDelegate(list, *m_model, this));
  setModel(m_model);
  const QItemSelectionModel* const unused = selectionModel();
  setSelectionModel(m_selection);
  delete unused;
  setSelectionMode(ExtendedSelection);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setIndentation(0);
  setUniformRowHeights(true);
  setEditTriggers(NoEditTriggers);
  setAutoScroll(false);
  setHorizontalScrollMode(ScrollPerPixel);
  ConnectHeader();
  m_list.SetObserver(this);
  ColumnsChanged();
  setVisible(m_list.Visible());
}

clsListWidget::~clsListWidget() {
  m_list.SetObserver(nullptr);
}

// The header of the user's is the list's. A change by the one isn't told back to it.
void clsListWidget::ConnectHeader() {
  QHeaderView& columns = *header();
  columns.setStretchLastSection(false);
  columns.setSectionsMovable(true);
  columns.setFirstSectionMovable(true);
  columns.setSectionsClickable(true);
  columns.setTextElideMode(Qt::ElideRight);
  columns.setHighlightSections(false);
  columns.setMinimumSectionSize(LeastColumn);
  qt::Connect(&columns, &QHeaderView::sectionResized, this, [this](int column, int, int pixels) {
    if (m_toHeader) return;
    const QScopedValueRollback user(m_fromHeader, true);
    m_list.SetWidth(static_cast<std::size_t>(column), qt::ToTwips(pixels));
  });
  qt::Connect(&columns, &QHeaderView::sectionMoved, this, [this](int column, int, int place) {
    if (m_toHeader) return;
    const QScopedValueRollback user(m_fromHeader, true);
    m_list.SetPosition(static_cast<std::size_t>(column), place + 1);
  });
  qt::Connect(&columns, &QHeaderView::sectionClicked, this, [this](int column) {
    if (m_list.ColumnClick) m_list.ColumnClick(static_cast<std::size_t>(column));
    LayoutChanged();  // Qt has moved the arrow, whatever the program thinks of the click
  });
}

// The list's changes.

void clsListWidget::ColumnsChanged() {
  {
    const QScopedValueRollback list(m_toHeader, true);
    m_model->Reset();
  }
  LayoutChanged();
  SelectionChanged();
}

void clsListWidget::LayoutChanged() {
  const std::vector<ListColumn>& columns = m_list.Columns();
  if (m_fromHeader || static_cast<std::size_t>(header()->count()) != columns.size()) return;
  const QScopedValueRollback list(m_toHeader, true);
  std::vector<int> order(columns.size());
  for (std::size_t column = 0; column < columns.size(); ++column) {
    header()->resizeSection(static_cast<int>(column), qt::ToPixels(columns[column].Width));
    order[static_cast<std::size_t>(columns[column].Position) - 1] = static_cast<int>(column);
  }
  for (int place = 0; place < static_cast<int>(order.size()); ++place) {
    header()->moveSection(header()->visualIndex(order[static_cast<std::size_t>(place)]), place);
  }
  setHeaderHidden(m_list.HideColumnHeaders());
  header()->setSortIndicatorShown(m_list.Sorted());
  header()->setSortIndicator(m_list.Sorted() ? static_cast<int>(m_list.SortKey()) : -1,
                             m_list.Descending() ? Qt::DescendingOrder : Qt::AscendingOrder);
}

// Rows that are sorted, or some of which go, leave the view where it is; others begin at the top.
// As many rows as before need nothing but to be painted: Qt would look at each of them.
void clsListWidget::RowsChanged() {
  m_anchor = ListView::NoRow;
  const bool sameRows = std::exchange(m_filling, m_list.Filling()) == m_list.Filling();
  if (!sameRows || m_list.RowCount() != static_cast<std::size_t>(m_model->rowCount({}))) {
    const int top = sameRows ? verticalScrollBar()->value() : 0;
    const QScopedValueRollback list(m_toHeader, true);
    m_model->Reset();
    if (isVisible()) executeDelayedItemsLayout();
    verticalScrollBar()->setValue(top);
  }
  SelectionChanged();
}

void clsListWidget::SelectionChanged() {
  m_changed = true;
  m_selection->Mirror();
  viewport()->update();
}

// A list that comes in another one's place takes its focus over.
void clsListWidget::VisibleChanged() {
  setVisible(m_list.Visible());
  const auto* const focused = dynamic_cast<clsListWidget*>(QApplication::focusWidget());
  if (m_list.Visible() && focused != nullptr && focused->parent() == parent()) setFocus();
}

// What the user does.

std::size_t clsListWidget::RowAt(const QPoint& position) const {
  return m_model->RowOf(indexAt(position));
}

void clsListWidget::GoTo(std::size_t row, Way way) {
  if (m_anchor >= m_list.RowCount()) m_anchor = m_list.SelectedItem();
  if (m_anchor == ListView::NoRow) m_anchor = row;
  const auto [first, last] = std::minmax(m_anchor, row);
  m_list.BeginUpdate();
  m_list.SetSelectedItem(row);
  switch (way) {
    case Way::Only:
      m_list.SelectOnlyRange(row, row);
      break;
    case Way::Toggle:
      m_list.Select(row, !m_list.Selected(row));
      break;
    case Way::Focus:
      break;
    case Way::Range:
      m_list.SelectOnlyRange(first, last);
      break;
    case Way::AddRange:
      m_list.SelectRange(first, last, true);
      break;
  }
  if (way == Way::Only || way == Way::Toggle) m_anchor = row;
  m_list.EndUpdate();
  scrollTo(m_model->IndexOf(row));
}

void clsListWidget::EndGesture() {
  m_dragging = false;
  m_pressed = false;
  m_scroll.stop();
  if (std::exchange(m_changed, false) && m_list.ItemClick) m_list.ItemClick();
}

void clsListWidget::mousePressEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    m_changed = false;
    m_dragging = false;
    m_pressed = true;
    if (m_list.GotFocus) m_list.GotFocus();  // also a click that changes no focus is meant for it
    const std::size_t row = RowAt(event->position().toPoint());
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const bool control = event->modifiers().testFlag(Qt::ControlModifier);
    if (row == ListView::NoRow) {
      if (!shift && !control) m_list.SelectAll(false);
    } else if (event->button() == Qt::RightButton) {
      GoTo(row, m_list.Selected(row) ? Way::Focus : Way::Only);
    } else if (event->button() == Qt::LeftButton) {
      if (shift) {
        GoTo(row, control ? Way::AddRange : Way::Range);
      } else {
        GoTo(row, control ? Way::Toggle : Way::Only);
      }
      m_dragging = !control;
    }
  });
}

void clsListWidget::mouseMoveEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    if (event->buttons() == Qt::NoButton) {
      QTreeView::mouseMoveEvent(event);
    } else if (m_dragging) {
      DragTo(event->position().toPoint());
    }
  });
}

// Beyond the rows the selection goes on by one row at a time, as long as the mouse stays there.
void clsListWidget::DragTo(const QPoint& position) {
  const std::size_t focus = m_list.SelectedItem();
  if (focus == ListView::NoRow) return;
  const int bottom = viewport()->height() - 1;
  const QPoint inside(std::clamp(position.x(), 0, viewport()->width() - 1),
                      std::clamp(position.y(), 0, bottom));
  std::size_t row = RowAt(inside);
  if (row == ListView::NoRow) row = RowAt(QPoint(0, inside.y()));
  if (row == ListView::NoRow) row = m_list.RowCount() - 1;
  if (position.y() == inside.y()) {
    m_scroll.stop();
  } else {
    if (!m_scroll.isActive()) m_scroll.start(ScrollPause, this);
    if (position.y() < 0 && row > 0) --row;
    if (position.y() > 0 && row + 1 < m_list.RowCount()) ++row;
  }
  if (row != focus) GoTo(row, Way::Range);
}

void clsListWidget::timerEvent(QTimerEvent* event) {
  qt::Guard(this, [&] {
    if (event->timerId() == m_scroll.timerId()) {
      DragTo(viewport()->mapFromGlobal(QCursor::pos()));
    } else {
      QTreeView::timerEvent(event);
    }
  });
}

void clsListWidget::mouseReleaseEvent(QMouseEvent*) {
  qt::Guard(this, [&] {
    if (m_pressed) EndGesture();
  });
}

void clsListWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    const bool row = RowAt(event->position().toPoint()) != ListView::NoRow;
    if (row && event->button() == Qt::LeftButton && m_list.DblClick) m_list.DblClick();
  });
}

bool clsListWidget::MoveByKey(const QKeyEvent& event) {
  static const std::pair<int, CursorAction> Moves[] = {
      {Qt::Key_Up, MoveUp},   {Qt::Key_Down, MoveDown},     {Qt::Key_Home, MoveHome},
      {Qt::Key_End, MoveEnd}, {Qt::Key_PageUp, MovePageUp}, {Qt::Key_PageDown, MovePageDown},
  };
  const auto move = std::find_if(std::begin(Moves), std::end(Moves),
                                 [&](const auto& one) { return one.first == event.key(); });
  if (move == std::end(Moves)) return false;
  const std::size_t row = m_model->RowOf(moveCursor(move->second, Qt::NoModifier));
  if (row == ListView::NoRow) return true;
  const bool control = event.modifiers().testFlag(Qt::ControlModifier);
  if (event.modifiers().testFlag(Qt::ShiftModifier)) {
    GoTo(row, control ? Way::AddRange : Way::Range);
  } else {
    GoTo(row, control ? Way::Focus : Way::Only);
  }
  return true;
}

void clsListWidget::keyPressEvent(QKeyEvent* event) {
  qt::Guard(this, [&] {
    m_keys.Press(*event);
    m_changed = false;
    const std::size_t focus = m_list.SelectedItem();
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (MoveByKey(*event)) {
      event->accept();
    } else if (event->key() == Qt::Key_Space && focus != ListView::NoRow) {
      GoTo(focus,
           modifiers == Qt::ControlModifier || !m_list.Selected(focus) ? Way::Toggle : Way::Focus);
    } else {
      QTreeView::keyPressEvent(event);
      if (m_list.SelectedItem() != focus) {
        m_anchor = m_list.SelectedItem();
        scrollTo(currentIndex());
      }
    }
    EndGesture();
  });
}

void clsListWidget::keyReleaseEvent(QKeyEvent* event) {
  qt::Guard(this, [&] {
    QTreeView::keyReleaseEvent(event);
    const int code = m_keys.Release(*event);
    if (code != 0 && m_list.KeyUp) m_list.KeyUp(code);
  });
}

void clsListWidget::focusInEvent(QFocusEvent* event) {
  qt::Guard(this, [&] {
    QTreeView::focusInEvent(event);
    viewport()->update();
    if (m_list.GotFocus) m_list.GotFocus();
  });
}

void clsListWidget::focusOutEvent(QFocusEvent* event) {
  qt::Guard(this, [&] {
    QTreeView::focusOutEvent(event);
    m_keys.Forget();
    m_scroll.stop();
    viewport()->update();
    if (!qt::KeepsFocus(event->reason()) && m_list.LostFocus) m_list.LostFocus();
  });
}

// The view's own ways, such as the search by typing, end here.

void clsListWidget::selectAll() {
  m_list.SelectAll(true);
}

QItemSelectionModel::SelectionFlags clsListWidget::selectionCommand(const QModelIndex& index,
                                                                    const QEvent*) const {
  if (!index.isValid()) return QItemSelectionModel::NoUpdate;
  return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

// Going to a row never scrolls sideways.
void clsListWidget::scrollTo(const QModelIndex& index, ScrollHint hint) {
  const int before = horizontalScrollBar()->value();
  QTreeView::scrollTo(index, hint);
  horizontalScrollBar()->setValue(before);
}

void clsListWidget::initViewItemOption(QStyleOptionViewItem* option) const {
  QTreeView::initViewItemOption(option);
  if (!hasFocus()) ShowUnfocused(*option);
}

// The row with the focus has a dotted frame round its columns, as many styles show theirs next to
// nothing of it.
void clsListWidget::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
  QTreeView::drawRow(painter, option, index);
  const std::size_t row = m_model->RowOf(index);
  if (row == ListView::NoRow || row != m_list.SelectedItem() || !hasFocus()) return;
  const auto ink = m_list.Selected(row) ? QPalette::HighlightedText : QPalette::Text;
  painter->save();
  painter->setPen(QPen(option.palette.color(ink), 1, Qt::DotLine));
  const int pastColumns = header()->length() - header()->offset();
  painter->drawRect(
      option.rect.intersected(QRect(0, 0, pastColumns, height())).adjusted(0, 0, -1, -1));
  painter->restore();
}

bool clsListWidget::viewportEvent(QEvent* event) {
  return qt::Guard(this, [&] {
    if (event->type() != QEvent::ToolTip) return QTreeView::viewportEvent(event);
    qt::ShowCutTip(*this, *static_cast<QHelpEvent*>(event));
    return true;
  });
}

}  // namespace sandrel
