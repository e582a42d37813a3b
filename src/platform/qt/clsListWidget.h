// A list on the screen.
#pragma once

#include <QBasicTimer>
#include <QTreeView>

#include "platform/controls/ListView.h"
#include "platform/qt/modInput.h"

namespace sandrel {

class clsListModel;
class clsListSelection;

/// Shows a ListView and raises its events. What the user does reaches the list first, its events
/// after: `ItemClick` once for each click or key that changed the selection or the focus. The list
/// must outlive the widget, which is its observer. Half a million rows are no burden.
class clsListWidget final : public QTreeView, private ListViewObserver {
  Q_OBJECT

 public:
  clsListWidget(ListView& list, QWidget* parent);
  ~clsListWidget() override;

  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  void selectAll() override;

 protected:
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void initViewItemOption(QStyleOptionViewItem* option) const override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void ColumnsChanged() override;
  void LayoutChanged() override;
  void RowsChanged() override;
  void SelectionChanged() override;
  void VisibleChanged() override;

  /// What a row that the user goes to does to the selection.
  enum class Way {
    Only,      ///< it alone is selected
    Toggle,    ///< it changes, the others stay
    Focus,     ///< it has the focus; nothing is selected or deselected
    Range,     ///< the rows from the anchor to it alone are selected
    AddRange,  ///< and the others stay
  };
  void GoTo(std::size_t row, Way way);
  void DragTo(const QPoint& position);
  void EndGesture();
  bool MoveByKey(const QKeyEvent& event);
  std::size_t RowAt(const QPoint& position) const;
  void ConnectHeader();

  ListView& m_list;
  clsListModel* m_model;
  clsListSelection* m_selection;
  std::size_t m_anchor = ListView::NoRow;  // where a range begins
  unsigned m_filling;
  bool m_changed = false;     // selection or focus, since the gesture began
  bool m_pressed = false;     // a button is down; the click is told when it comes up
  bool m_dragging = false;    // the left button went down on a row and selects as it moves
  bool m_fromHeader = false;  // the user changes the columns
  bool m_toHeader = false;    // the list does
  QBasicTimer m_scroll;       // runs while the mouse is dragged above or below the rows
  qt::clsKeysDown m_keys;
};

}  // namespace sandrel
