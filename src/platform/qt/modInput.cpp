#include "platform/qt/modInput.h"

#include <QKeyEvent>

namespace sandrel::qt {

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

void clsKeysDown::Press(const QKeyEvent& event) {
  if (!event.isAutoRepeat()) m_keys.insert(event.key());
}

int clsKeysDown::Release(const QKeyEvent& event) {
  if (event.isAutoRepeat() || !m_keys.remove(event.key())) return 0;
  return KeyCode(event);
}

}  // namespace sandrel::qt
