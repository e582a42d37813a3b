// The main window and the tray.
#include <QCursor>
#include <QMenu>
#include <QTimer>

#include "common/text.h"
#include "shell/frmSandrel.h"

namespace sandrel {
namespace {
constexpr int RightButton = 2;
constexpr int MenuDelay = 100;  // ms: the menu is not opened inside the tray's own event
}  // namespace

void frmSandrel::SetTrayEvents() {
  m_controls.SysTray.MouseDown = [this](int button) { SysTray_MouseDown(button); };
  m_controls.SysTray.DblClick = [this] {
    RestoreForm();
    Form_Resize();
  };
  m_controls.Menus["mnuSettingsSystray"].Click = [this] {
    m_browser.Command("frmSandrel.mnuSettingsSystray", [this] { mnuSettingsSystray_Click(); });
  };
  m_controls.Menus["mnuSysTrayPopupRestore"].Click = [this] { RestoreForm(); };
  m_controls.Menus["mnuSysTrayPopupExit"].Click = [this] { mnuSysTrayPopupExit_Click(); };
}

// A panel may bring its tray after the program has started.
void frmSandrel::TakeTray() {
  const bool before = m_controls.SysTray.Available;
  m_controls.SysTray.Look();
  MenuItem& item = m_controls.Menus["mnuSettingsSystray"];
  item.SetEnabled(m_controls.SysTray.Available);
  if (!before && m_controls.SysTray.Available) m_controls.SysTray.SetInTray(item.Checked());
}

void frmSandrel::mnuSettingsSystray_Click() {
  MenuItem& item = m_controls.Menus["mnuSettingsSystray"];
  const bool inTray = !item.Checked();
  m_settings.SaveSetting("Enabled", "Systray", text::BooleanText(inTray));
  item.SetChecked(inTray);
  m_controls.SysTray.SetInTray(inTray);
}

void frmSandrel::SysTray_MouseDown(int button) {
  if (button != RightButton) return;
  activateWindow();
  m_trayMenuPending = true;
  Timer->start(MenuDelay);
}

void frmSandrel::Timer_Tick() {
  if (!m_trayMenuPending) return;
  Timer->stop();
  m_trayMenuPending = false;
  mnuSysTrayPopup->popup(QCursor::pos());
}

void frmSandrel::RestoreForm() {
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void frmSandrel::mnuSysTrayPopupExit_Click() {
  m_controls.SysTray.SetInTray(false);
  State.CloseDown = true;
  m_controls.Menus["mnuFileExit"].Click();
  // The user kept a running scan.
  if (!State.CloseDown && m_controls.Menus["mnuSettingsSystray"].Checked()) {
    m_controls.SysTray.SetInTray(true);
  }
}

}  // namespace sandrel
