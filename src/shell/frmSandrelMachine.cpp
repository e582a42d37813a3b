// Which machine the main window looks at.
#include <fmt/format.h>

#include <cstdlib>

#include "common/clsError.h"
#include "platform/machine/modMachineReport.h"
#include "platform/qt/modBoxes.h"
#include "shell/frmSandrel.h"

namespace sandrel {
namespace {

// The variable that names the machine of every new start; empty for none.
std::string NamingVariable() {
  for (const char* name : {"SANDREL_MACHINE", "WINEPREFIX"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') return name;
  }
  return {};
}

}  // namespace

std::string frmSandrel::MachineToOpen() {
  return m_machineFolder.empty() ? MachineFolder(m_options.Machine, m_settings) : m_machineFolder;
}

// Raises what is missing. The window is there without a machine, for viewing analyses.
std::shared_ptr<clsMachine> frmSandrel::OpenMachine() {
  try {
    auto machine = clsMachine::Open(MachineToOpen());
    m_analysis.SetMachine(machine);
    return machine;
  } catch (const clsError& error) {
    throw error.WithDescription(error.Description() +
                                "\n\nChoose another one with Machine... in the Settings menu.");
  }
}

bool frmSandrel::HasMachine() {
  try {
    return OpenMachine() != nullptr;
  } catch (const clsError&) {
    return false;
  }
}

// Every snapshot command looks for it anew: a volume may have been mounted meanwhile.
void frmSandrel::ForgetMachine() {
  m_snapshots.SetMachine(nullptr);
  m_analysis.SetMachine(nullptr);
}

void frmSandrel::mnuSettingsMachine_Click() {
  m_browser.Command("frmSandrel.mnuSettingsMachine", [this] {
    const std::string folder =
        qt::ChooseFolder(BoxParent(), "Choose the machine to look at", MachineToOpen());
    if (folder.empty()) return;
    const auto machine = clsMachine::Open(folder);  // raises what to choose
    m_machineFolder = machine->Folder();
    m_settings.SaveSetting("Machine", "Folder", m_machineFolder);
    SetStatusText(fmt::format("Looking at {} ({})", m_machineFolder, KindText(*machine)));
    if (const std::string variable = NamingVariable(); !variable.empty()) {
      Tell(
          fmt::format("${} names a machine too. It counts again when Sandrel is started the next "
                      "time.",
                      variable));
    }
  });
}

}  // namespace sandrel
