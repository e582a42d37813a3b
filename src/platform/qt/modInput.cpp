#include "platform/qt/modInput.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include "platform/qt/modGuard.h"

namespace sandrel::qt {

namespace {

class clsMover final : public QObject {
 public:
  clsMover(QLineEdit& box, QAbstractItemView& list) : QObject(&box), m_list(list) {
    box.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    return qt::Guard(this, [&] {
      if (event->type() != QEvent::KeyPress) return false;
      const int key = static_cast<QKeyEvent*>(event)->key();
      const bool moves = key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
                         key == Qt::Key_PageDown;
      if (moves) QCoreApplication::sendEvent(&m_list, event);
      return moves;
    });
  }

 private:
  QAbstractItemView& m_list;
};

}  // namespace

int KeyCode(const QKeyEvent& event) {
  const int key = event.key();
  switch (key) {
    case Qt::Key_Backspace:
      return 8;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return 13;
    case Qt::Key_PageUp:
      return 33;
    case Qt::Key_PageDown:
      return 34;
    case Qt::Key_End:
      return 35;
    case Qt::Key_Home:
      return 36;
    case Qt::Key_Left:
      return 37;
    case Qt::Key_Up:
      return 38;
    case Qt::Key_Right:
      return 39;
    case Qt::Key_Down:
      return 40;
    case Qt::Key_Delete:
      return 46;
    default:
      break;
  }
  const bool letter = key >= Qt::Key_A && key <= Qt::Key_Z;
  const bool digit = key >= Qt::Key_0 && key <= Qt::Key_9;
  return letter || digit ? key : 0;
}

bool KeepsFocus(Qt::FocusReason reason) {
  return reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason ||
         reason == Qt::ActiveWindowFocusReason;
}

void MoveThrough(QLineEdit& box, QAbstractItemView& list) {
  new clsMover(box, list);  // the box owns it
}

void clsKeysDown::Press(const QKeyEvent& event) {
  if (!event.isAutoRepeat()) m_keys.insert(event.key());
}

int clsKeysDown::Release(const QKeyEvent& event) {
  if (event.isAutoRepeat() || !m_keys.remove(event.key())) return 0;
  return KeyCode(event);
}

}  // namespace sandrel::qt
