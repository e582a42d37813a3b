#include "platform/qt/clsSplitBar.h"

#include <QMouseEvent>
#include <QPainter>

#include "platform/qt/modGuard.h"

namespace sandrel {

clsSplitBar::clsSplitBar(QWidget* parent) : QWidget(parent) {
  setCursor(Qt::SizeHorCursor);
}

void clsSplitBar::mousePressEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    if (event->button() != Qt::LeftButton) return;
    m_dragging = true;
    update();
  });
}

void clsSplitBar::mouseMoveEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    if (!m_dragging || (event->buttons() & Qt::LeftButton) == 0) return;
    const QPointF cursor = mapToParent(event->position());
    const int left = static_cast<int>(cursor.x()) - width() / 2;
    if (MayStandAt && MayStandAt(left)) move(left, y());
  });
}

void clsSplitBar::mouseReleaseEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    if (!m_dragging || event->button() != Qt::LeftButton) return;
    m_dragging = false;
    update();
    if (Dropped) Dropped();
  });
}

void clsSplitBar::paintEvent(QPaintEvent*) {
  constexpr QColor Dragged(0, 0, 0x40);
  QPainter(this).fillRect(rect(), m_dragging ? Dragged : palette().color(QPalette::Button));
}

}  // namespace sandrel
