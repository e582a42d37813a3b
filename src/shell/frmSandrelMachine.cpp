// Which machine the main window looks at.
#include <fmt/format.h>

#include <cstdlib>

#include "common/clsError.h"
#include "platform/qt/modBoxes.h"
#include "shell/frmSandrel.h"

namespace sandrel {
namespace {

std::string KindText(const clsMachine& machine) {
  return machine.MachineKind() == clsMachine::Kind::WinePrefix ? "Wine prefix"
                                                               : "offline Windows volume";
}

// The variable that names the machine of every new start; empty for none.
std::string NamingVariable() {
  for (const char* name : {"SANDREL_MACHINE", "WINEPREFIX"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') return name;
  }
  return {};
}

}  // namespace

// Looked for anew before each snapshot: a volume may have been mounted meanwhile. Without one the
// window is there for viewing analyses, and the snapshot commands tell what is missing.
void frmSandrel::OpenMachine() {
  std::shared_ptr<clsMachine> machine;
  try {
    machine = clsMachine::Open(
        m_machineFolder.empty() ? MachineFolder(m_options.Machine, m_settings) : m_machineFolder);
  } catch (const clsError&) {
  }
  m_snapshots.SetMachine(machine);
  m_analysis.SetMachine(machine);
}

void frmSandrel::mnuSettingsMachine_Click() {
  m_browser.Command("frmSandrel.mnuSettingsMachine", [this] {
    const std::string current =
        m_machineFolder.empty() ? MachineFolder(m_options.Machine, m_settings) : m_machineFolder;
    const std::string folder =
        qt::ChooseFolder(BoxParent(), "Choose the machine to look at", current);
    if (folder.empty()) return;
    const auto machine = clsMachine::Open(folder);  // raises what to choose
    m_machineFolder = machine->Folder();
    m_settings.SaveSetting("Machine", "Folder", m_machineFolder);
    OpenMachine();
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
