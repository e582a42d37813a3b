// Help and the About box of the main window.
#include "common/modInstallation.h"
#include "platform/machine/modMachineReport.h"
#include "shell/frmAbout.h"
#include "shell/frmHelp.h"
#include "shell/frmSandrel.h"

#ifndef SANDREL_VERSION
#define SANDREL_VERSION "0.0.0"
#endif

namespace sandrel {

void frmSandrel::SetHelpCommands() {
  const auto set = [this](const char* item, const std::function<void()>& command) {
    m_controls.Menus[item].Click = [this, method = std::string("frmSandrel.") + item, command] {
      m_browser.Command(method.c_str(), command);
    };
  };
  set("mnuHelpContents", [this] { ShowHelp(helpcommand::Tab); });
  set("mnuHelpIndex", [this] { ShowHelp(helpcommand::PartialKey); });
  set("mnuHelpAbout", [this] { mnuHelpAbout_Click(); });
}

void frmSandrel::SetHelpFile() {
  m_helpFile = m_options.HelpFile.empty() ? DataFile("sandrel.hlp") : m_options.HelpFile;
}

void frmSandrel::ShowHelp(int command) {
  if (m_help == nullptr) {
    m_help = std::make_unique<frmHelp>(*this, m_settings,
                                       [this] { return ReportMachine(MachineToOpen()); });
  }
  m_help->WinHelpA(static_cast<WindowHandle>(winId()), m_helpFile, command, {});
}

// It doesn't wait for its answer: a scan that runs goes on.
void frmSandrel::mnuHelpAbout_Click() {
  m_about = std::make_unique<frmAbout>(
      *this, [this] { return clsMachine::Open(MachineToOpen()); }, SANDREL_VERSION, this);
  m_about->open();
}

void frmSandrel::UnloadHelp() {
  if (m_help != nullptr) m_help->close();
  if (m_about != nullptr) m_about->close();
}

}  // namespace sandrel
