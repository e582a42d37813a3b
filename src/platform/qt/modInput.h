// Keys and focus as the program's events know them.
#pragma once

#include <QSet>

class QAbstractItemView;
class QKeyEvent;
class QLineEdit;

namespace sandrel::qt {

/// The platform's code of a key: 8 Backspace, 13 Enter, 33 to 40 for PageUp, PageDown, End, Home,
/// left, up, right, down, 46 Delete, letters and digits their upper-case ASCII; 0 for others.
int KeyCode(const QKeyEvent& event);

/// True when a control that Qt takes the focus from keeps it in the program's eyes: a menu borrows
/// it, or the whole window is left. Getting it back may then be told twice.
bool KeepsFocus(Qt::FocusReason reason);

/// Lets the vertical arrows and the page keys in `box` move through `list`, which lives as long.
void MoveThrough(QLineEdit& box, QAbstractItemView& list);

/// Knows which keys went down in a control. A key that comes up counts only where it went down: the
/// Enter that answers a box is not one of the list below it.
class clsKeysDown {
 public:
  void Press(const QKeyEvent& event);
  /// The code of a key that went down and is up now; 0 for none, or one that merely repeats.
  int Release(const QKeyEvent& event);
  void Forget() { m_keys.clear(); }

 private:
  QSet<int> m_keys;
};

}  // namespace sandrel::qt
