// The configuration dialog over the main window.
#include "common/clsError.h"
#include "config/clsConfigModel.h"
#include "config/frmConfig.h"
#include "shell/frmSandrel.h"
#include "snapshot/modSettingsChange.h"

namespace sandrel {

// Exclusions and options can be edited without a machine.
void frmSandrel::mnuSettingsConfig_Click() {
  m_browser.Command("frmSandrel.mnuSettingsConfig", [this] {
    std::shared_ptr<clsMachine> machine;
    std::string missing;
    try {
      machine = OpenMachine();
    } catch (const clsError& error) {
      missing = error.Description();
    }
    clsConfigModel model(*this, m_settings, machine, m_home.Path());
    frmConfig dialog(*this, model, machine, missing, BoxParent());
    dialog.Save = [&] {
      return ChangeScanSettings(*this, m_settings, m_home, [&] { model.Save(); });
    };
    if (!dialog.Form_Load() || dialog.exec() != QDialog::Accepted) return;
    m_snapshots.ShowLastBeforeSnapshot();
    UpdateCommandState();
  });
}

}  // namespace sandrel
