// The wizard over the main window's commands.
#include <chrono>
#include <cstdlib>
#include <thread>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/modInstallation.h"
#include "platform/process/clsHostCommands.h"
#include "platform/process/clsRunOnce.h"
#include "shell/frmSandrel.h"
#include "snapshot/clsStatements.h"
#include "snapshot/modFileDialogs.h"
#include "wizard/clsControlsWorks.h"
#include "wizard/clsShellWorks.h"
#include "wizard/frmWizard.h"

namespace sandrel {

// The wizard waits, however that ends.
class frmSandrel::clsWaiting {
 public:
  explicit clsWaiting(frmSandrel& form) : m_form(form) {
    form.m_wizardWanted = false;
    form.State.WizardWaits = true;
  }
  ~clsWaiting() { m_form.State.WizardWaits = false; }
  clsWaiting(const clsWaiting&) = delete;
  clsWaiting& operator=(const clsWaiting&) = delete;

 private:
  frmSandrel& m_form;
};

class frmSandrel::clsWizardSide final : public clsWizardCommands {
 public:
  explicit clsWizardSide(frmSandrel& form) : m_form(form) {}

  bool IsGone() const override { return m_form.m_unloaded; }
  bool IsBusy() const override { return m_form.State.Busy; }
  Answer Ask(const MessageBox& box) override { return m_form.Ask(box); }
  void SetMainVisible(bool visible) override;
  std::string Folder() const override { return m_form.m_home.Path(); }

  void ShowConfig() override { m_form.m_controls.Menus.Run("mnuSettingsConfig"); }
  bool BeforeSnapshot() override;
  bool ReplaceBefore() override;
  bool ConfirmBefore() override {
    m_form.m_snapshots.SetMachine(nullptr);
    return m_form.m_snapshots.ConfirmBefore();
  }
  std::string MachineText() const override { return "Machine: " + m_form.MachineToOpen(); }
  bool CanReplaceBefore() const override {
    return m_form.m_controls.Menus["mnuSnapShotRollUp"].IsUsable();
  }
  SnapshotLevel GetSnapshotLevel() const override { return m_form.m_snapshots.GetSnapshotLevel(); }
  std::string SnapshotTime(const char* which) const override {
    return m_form.m_snapshots.Record().Time(which);
  }
  void CheckAnalysis(const std::string& path) override { m_form.m_analysis.CheckTarget(path); }
  bool MakeAnalysis(const std::string& path) override;

  void CheckProgram(const std::string& commandLine) override {
    clsHostCommands::Check(clsHostCommands(Machine().get()).Make(commandLine), commandLine);
  }
  void RunProgram(const std::string& commandLine) override;
  void Wait(std::int32_t seconds) override;
  void StoreRunOnce() override;
  void DeleteRunOnce() override;

  std::string ChooseProgram() override;
  std::string ChooseAnalysis() override {
    return GetViewNameAndLocation(m_form, m_form.m_home.Path(), "");
  }

 private:
  std::shared_ptr<clsMachine> Machine();
  bool PassMessages();

  frmSandrel& m_form;
};

// Programs of the host can be run without a machine.
std::shared_ptr<clsMachine> frmSandrel::clsWizardSide::Machine() {
  try {
    return m_form.OpenMachine();
  } catch (const clsError&) {
    return nullptr;
  }
}

// The user ends a wait by coming back to the wizard.
bool frmSandrel::clsWizardSide::PassMessages() {
  m_form.DoEvents(false);
  return !m_form.m_unloaded && !m_form.m_wizardWanted;
}

bool frmSandrel::clsWizardSide::BeforeSnapshot() {
  SnapshotResult result = SnapshotResult::Failed;
  m_form.SetBeforeSSCompleteNotify(true);
  m_form.SnapshotCommand([&] { result = m_form.m_snapshots.mnuSnapShotBefore_Click(); });
  m_form.SetBeforeSSCompleteNotify(false);
  return !m_form.CloseDown() && result != SnapshotResult::Failed;
}

bool frmSandrel::clsWizardSide::ReplaceBefore() {
  bool replaced = false;
  m_form.SnapshotCommand([&] { replaced = m_form.m_snapshots.mnuSnapShotRollUp_Click(); });
  return replaced;
}

// Without a tray there would be no way back to a hidden window.
void frmSandrel::clsWizardSide::SetMainVisible(bool visible) {
  if (visible) {
    m_form.setWindowState(m_form.windowState() & ~Qt::WindowMinimized);
    m_form.show();
  } else if (m_form.m_controls.SysTray.InTray()) {
    m_form.hide();
  } else {
    m_form.showMinimized();
  }
}

bool frmSandrel::clsWizardSide::MakeAnalysis(const std::string& path) {
  bool made = false;
  m_form.SnapshotCommand([&] { made = m_form.m_analysis.AfterAndViews(m_form.m_snapshots, path); });
  return made;
}

// No other command begins meanwhile, though messages pass.
void frmSandrel::clsWizardSide::RunProgram(const std::string& commandLine) {
  const auto machine = Machine();
  const clsWaiting waiting(m_form);
  m_form.SnapshotCommand([&] {
    m_form.UpdateCommandState();
    PassMessages();
    clsShellWorks(machine.get(), [this] {
      return PassMessages();
    }).SyncShell(commandLine, 0, false, false);
  });
}

void frmSandrel::clsWizardSide::Wait(std::int32_t seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  const clsWaiting waiting(m_form);
  m_form.SnapshotCommand([&] {
    m_form.UpdateCommandState();
    while (PassMessages() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  });
}

// The program that comes back looks at the same machine, home and settings.
void frmSandrel::clsWizardSide::StoreRunOnce() {
  std::vector<std::string> variables = {"SANDREL_MACHINE=" + m_form.MachineToOpen(),
                                        "SANDREL_HOME=" + m_form.m_home.Path()};
  const auto keep = [&](const char* name, auto&& text) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0')
      variables.push_back(std::string(name) + "=" + text(value));
  };
  keep("SANDREL_SETTINGS", clsFileWorks::Absolute);
  keep("SANDREL_NETWORK", clsFileWorks::Absolute);
  keep("SANDREL_USER", [](const char* value) { return value; });
  const std::string& program = m_form.m_options.Program;
  clsRunOnce().SetValue(clsRunOnce::WizardEntry(m_form.m_home.Path()),
                        {HelperProgram("AsyncStartup", program), program, "/wizard", "page4"},
                        variables);
}

void frmSandrel::clsWizardSide::DeleteRunOnce() {
  clsStatements run(m_form, "frmWizard.DisplayPage");
  run.Command(
      [&] {
        run([&] { clsRunOnce().DeleteValue(clsRunOnce::WizardEntry(m_form.m_home.Path())); });
      },
      [] {});
}

std::string frmSandrel::clsWizardSide::ChooseProgram() {
  std::string path;
  clsStatements run(m_form, "frmWizard.RunDialog");
  run.Command(
      [&] {
        run([&] {
          path = m_form.ChooseFile(
              {"Browse", "", "", "Programs|*.exe;*.com;*.bat|All Files *.*|*.*", Folder(), false});
        });
      },
      [] {});
  return path;
}

void frmSandrel::SetWizardCommands() {
  if (m_options.Program.empty()) {
    m_options.Program = ProgramPath();
  }
  m_wizardCommands = std::make_unique<clsWizardSide>(*this);
  for (const char* item : {"mnuSnapShotWizard", "mnuSysTrayPopupWizard"}) {
    m_controls.Menus[item].Click = [this] { mnuSnapShotWizard_Click(); };
  }
}

void frmSandrel::mnuSnapShotWizard_Click() {
  UnloadSplash();  // it would lie over the wizard
  if (m_wizard != nullptr && m_wizard->IsRunning()) {
    m_wizardWanted = true;
    return;
  }
  if (State.Busy) {
    Ask(
        {"The wizard can't start while a snapshot or an analysis is made. Try again when that is "
         "finished.",
         "Sandrel Manager", Buttons::Ok, BoxIcon::Information});
    return;
  }
  if (!clsControlsWorks::IsLoaded(m_wizard.get())) {
    m_wizard = std::make_unique<frmWizard>(*m_wizardCommands, this);
    // It waited for an installer when the machine was restarted, and didn't come back by itself.
    if (clsRunOnce().HasValue(clsRunOnce::WizardEntry(m_home.Path()))) GoToInstalled();
  }
  m_wizard->ShowAgain();
}

void frmSandrel::GoToInstalled() {
  std::int16_t installed = 4;
  m_wizard->DisplayPage(installed, true, false);
  m_wizardCommands->DeleteRunOnce();
}

// The machine was restarted while the wizard waited for the installer.
void frmSandrel::GoOnWithWizard() {
  mnuSnapShotWizard_Click();
  if (clsControlsWorks::IsLoaded(m_wizard.get())) GoToInstalled();
}

void frmSandrel::BeforeSnapshotEnded() {
  if (!clsControlsWorks::IsLoaded(m_wizard.get())) return;
  CloseDown() ? m_wizard->Unload() : m_wizard->ShowAgain();
}

}  // namespace sandrel
