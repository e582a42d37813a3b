#include "platform/qt/clsTrayIcon.h"

#include <QPointer>

#include "platform/qt/Icons.h"
#include "platform/qt/modGuard.h"

namespace sandrel {

clsTrayIcon::clsTrayIcon(SysTray& model, QObject* parent)
    : QSystemTrayIcon(icons::Window(), parent), m_model(model) {
  model.LookForTray = isSystemTrayAvailable;
  model.Look();
  qt::Connect(this, &QSystemTrayIcon::activated, this, &clsTrayIcon::Activated);
  Follow();
  model.Changed = [held = QPointer<clsTrayIcon>(this)] {
    if (held) held->Follow();
  };
}

void clsTrayIcon::Follow() {
  setToolTip(QString::fromStdString(m_model.Tip()));
  setVisible(m_model.InTray());
}

// Many desktops tell a double click as two single ones, so one brings the window back already.
void clsTrayIcon::Activated(ActivationReason reason) {
  if (reason == Trigger || reason == DoubleClick) {
    if (m_model.DblClick) m_model.DblClick();
  } else if (reason == Context) {
    if (m_model.MouseDown) m_model.MouseDown(2);
  }
}

}  // namespace sandrel
