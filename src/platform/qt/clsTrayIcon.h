// The icon in the desktop's tray.
#pragma once

#include <QSystemTrayIcon>

#include "platform/controls/Bars.h"

namespace sandrel {

/// Shows a SysTray and follows it; takes its Changed and tells it whether the desktop has a tray.
class clsTrayIcon : public QSystemTrayIcon {
 public:
  /// `model` outlives the clicks of the user.
  clsTrayIcon(SysTray& model, QObject* parent);

 private:
  void Follow();
  void Activated(ActivationReason reason);

  SysTray& m_model;
};

}  // namespace sandrel
