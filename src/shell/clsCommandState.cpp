#include "shell/clsCommandState.h"

#include "common/clsFileWorks.h"
#include "common/text.h"
#include "snapshot/clsStatements.h"
#include "store/clsTableMaint.h"

namespace sandrel {
namespace {

constexpr const char* Section = "Enabled";

}  // namespace

clsCommandState::clsCommandState(clsShell& shell, clsSettings& settings, const clsHome& home,
                                 clsMainControls& controls)
    : m_shell(shell), m_settings(settings), m_home(home), m_controls(controls) {
  m_controls.tlbarMain.ButtonClick = [this](const std::string& key) { tlbarMain_ButtonClick(key); };
  m_controls.Menus["mnuViewToolbar"].Click = [this] { mnuViewToolbar_Click(); };
  m_controls.Menus["mnuViewStatusbar"].Click = [this] { mnuViewStatusbar_Click(); };
}

void clsCommandState::UpdateCommandState() {
  const Menus& menus = m_controls.Menus;
  const bool scanning = m_shell.State.Scanning || m_shell.State.Busy;
  for (const char* item : {"mnuFile", "mnuEdit", "mnuSnapShotBefore", "mnuColumns", "mnuView"}) {
    menus[item].SetEnabled(!scanning);
  }
  menus["mnuSnapShotWizard"].SetEnabled(!scanning || m_shell.State.WizardWaits);
  menus["mnuSnapShotCancelOperation"].SetEnabled(m_shell.State.Scanning);
  for (const char* button : {"Open", "BeforeSnapshot"}) m_controls.EnableButton(button, !scanning);
  m_controls.EnableButton("Wizard", !scanning || m_shell.State.WizardWaits);
  m_controls.EnableButton("StopScanning", m_shell.State.Scanning);
  m_controls.EnableButton("Help", true);
  const std::string working = m_home.WorkingDatabase();
  const bool after = !scanning && clsFileWorks::FileExists(working);
  const bool replace = after && ReadSnapshotLevel(working) == SnapshotLevel::BeforeAndAfter;
  menus["mnuSnapShotAfter"].SetEnabled(after);
  m_controls.EnableButton("AfterSnapshot", after);
  menus["mnuSnapShotRollUp"].SetEnabled(replace);
  m_controls.EnableButton("ReplaceBeforeSnapshot", replace);
  // The buttons of the File and Edit menus follow what is open and selected.
  if (scanning) {
    for (const char* button : {"Close", "PrintPreview", "Print", "Undo", "Copy", "Delete"}) {
      m_controls.EnableButton(button, false);
    }
  }
  RefreshMenus();
  ShowBars();
}

void clsCommandState::RefreshMenus() {
  if (!m_controls.FormReady || m_shell.State.Scanning || m_shell.State.Busy) return;
  for (const char* menu : {"mnuFile", "mnuEdit"}) {
    if (m_controls.Menus[menu].Click) m_controls.Menus[menu].Click();
  }
}

void clsCommandState::ShowBars() {
  const auto isOn = [this](const char* key) {
    return text::ReadBoolean(m_settings.GetSetting(Section, key), true);
  };
  m_controls.Menus["mnuViewStatusbar"].SetChecked(isOn("Statusbar"));
  m_controls.Menus["mnuViewToolbar"].SetChecked(isOn("Toolbar"));
  m_controls.tlbarMain.SetVisible(isOn("Toolbar"));
  m_controls.stbrStatus.SetVisible(isOn("Statusbar"));
  if (OnLayout) OnLayout();
}

void clsCommandState::Toggle(const char* item, const char* key) {
  clsStatements run(m_shell, std::string("frmSandrel.") + item);
  const bool on = !m_controls.Menus[item].Checked();
  run.Command(
      [&] {
        run([&] { m_settings.SaveSetting(Section, key, text::BooleanText(on)); });
        run([&] { ShowBars(); });
      },
      [] {});
}

void clsCommandState::mnuViewToolbar_Click() {
  Toggle("mnuViewToolbar", "Toolbar");
}

void clsCommandState::mnuViewStatusbar_Click() {
  Toggle("mnuViewStatusbar", "Statusbar");
}

void clsCommandState::tlbarMain_ButtonClick(const std::string& key) {
  m_controls.Menus.Run(m_controls.tlbarMain.Button(key).Item);
}

}  // namespace sandrel
