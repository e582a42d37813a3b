#include "snapshot/clsSnapshots.h"

#include <fmt/format.h>

#include <ctime>
#include <optional>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/modDateText.h"
#include "platform/dao/Workspace.h"
#include "platform/machine/clsServerWait.h"

namespace sandrel {
namespace {

constexpr const char* ManagerTitle = "Sandrel Manager";
constexpr const char* TimeSection = "Snapshot Creation Time";
constexpr const char* MachineSection = "Snapshot Machine";

std::string WithAccessAdvice(const clsError& error) {
  if (error.Number() != errnum::BadFileName) return error.Description();
  return error.Description() +
         "\n\nMake sure you have access to this file or folder. You may wish to exclude file(s) or "
         "folder(s) using the Configuration option of Sandrels' Settings menu.";
}

}  // namespace

clsSnapshots::clsSnapshots(clsShell& shell, clsSettings& settings, const clsHome& home,
                           std::shared_ptr<clsMachine> machine)
    : m_shell(shell), m_settings(settings), m_home(home), m_machine(std::move(machine)) {}

ScanHive clsSnapshots::HiveByIndex(int index, bool remote) {
  static const std::vector<ScanHive> Local = {
      {"HKEY_CLASSES_ROOT", hkey::ClassesRoot},
      {"HKEY_CURRENT_CONFIG", hkey::CurrentConfig},
      {"HKEY_CURRENT_USER", hkey::CurrentUser},
      {"HKEY_LOCAL_MACHINE", hkey::LocalMachine},
      {"HKEY_USERS", hkey::Users},
  };
  static const std::vector<ScanHive> Remote = {{"HKEY_LOCAL_MACHINE", hkey::LocalMachine},
                                               {"HKEY_USERS", hkey::Users}};
  const std::vector<ScanHive>& hives = remote ? Remote : Local;
  const bool known = index >= 1 && static_cast<std::size_t>(index) <= hives.size();
  return known ? hives[static_cast<std::size_t>(index) - 1] : ScanHive{};
}

std::string clsSnapshots::SnapshotMachine() {
  return m_settings.GetSetting(MachineSection, "Folder");
}

clsScanContext clsSnapshots::Context() {
  return {Need(m_machine), m_settings, m_leftOut, m_home.Path(), [this] { m_shell.DoEvents(); }};
}

// A command begins: what is missing for it is told before anything is changed.
bool clsSnapshots::NeedMachine(clsStatements& run) {
  run([&] {
    if (m_machine != nullptr) return;
    throw clsError(
        errnum::Machine,
        "There is no machine to look at. Choose one with Machine... in the Settings menu, or "
        "name its folder in $SANDREL_MACHINE.");
  });
  return m_machine != nullptr;
}

// All hives are opened before anything is deleted: one that can't be read must not cost the
// snapshot that exists.
void clsSnapshots::CheckHives() {
  m_machine->CloseRegistry();
  clsScanSettings settings(m_settings);
  if (settings.RegScan() && settings.RemoteName().empty()) m_machine->Registry();
}

void clsSnapshots::mnuSnapShotBefore_Click() {
  clsStatements run(m_shell, "frmSandrel.mnuSnapShotBefore", WithAccessAdvice);
  run.Command([&] { Before(run); },
              [&] {
                m_driveScan.reset();
                m_regScan.reset();
                if (m_changed) DiscardBefore();
                m_shell.State.Scanning = false;
              });
}

void clsSnapshots::DiscardBefore() {
  try {
    clsTableMaint().DeleteDatabase(m_home.WorkingDatabase());
  } catch (const clsError& error) {
    m_shell.Tell(error.Description());
  }
}

bool clsSnapshots::MayOverwriteBefore() {
  std::string question;
  switch (GetSnapshotLevel()) {
    case SnapshotLevel::None:
      return true;
    case SnapshotLevel::Before:
      question = "A 'Before' snapshot already exists. Overwrite the existing snapshot?";
      break;
    case SnapshotLevel::BeforeAndAfter:
      question =
          "'Before' and 'After' snapshots already exists. If you continue BOTH snapshots will be "
          "overwritten!\n\nOverwrite the existing snapshots?";
      break;
  }
  return m_shell.Ask({question, ManagerTitle, Buttons::YesNo, BoxIcon::None}) == Answer::Yes;
}

void clsSnapshots::Before(clsStatements& run) {
  AppState& state = m_shell.State;
  m_changed = false;
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText(""); });
  bool goOn = false;
  std::optional<clsHomeLock> lock;
  if (NeedMachine(run)) {
    run([&] { lock.emplace(m_home); });
    if (lock) run([&] { goOn = MayOverwriteBefore(); });
  }
  if (goOn) {
    const std::string database = m_home.WorkingDatabase();
    run([&] { m_shell.SetMousePointer(pointer::ArrowHourglass); });
    state.Scanning = true;
    run([&] { m_shell.UpdateCommandState(); });
    run([&] { CheckHives(); });
    m_leftOut.Clear();
    m_changed = true;
    clsTableMaint maint;
    run([&] { maint.DeleteDatabase(database); });
    run([&] { maint.CreateDatabase(database); });
    run([&] { maint.CreateTempRegKeyTable(database, "tblRegKey"); });
    run([&] { maint.CreateTempRegValueTable(database, "tblRegValue"); });
    run([&] { maint.CreateTempPathTable(database, "tblPaths"); });
    run([&] { maint.CreateTempFileTable(database, "tblFiles"); });
    run([&] { maint.CreateTempIniSectionTable(database, "tblIniSections"); });
    run([&] { maint.CreateTempIniValueTable(database, "tblIniValues"); });
    const Tables tables{"tblFiles", "", "tblRegValue", "tblIniValues"};
    ScanDisk(run, tables, true);
    ScanRegistry(run, tables);
    // Also after a cancelled scan, whose time then stands for a snapshot that isn't there.
    run([&] { StoreTime("Before"); });
    run([&] { m_settings.SaveSetting(MachineSection, "Folder", m_machine->Folder()); });
    run([&] { ShowLastBeforeSnapshot(); });
    if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
    if (state.Scanning) {
      run([&] { m_shell.SetStatusText("Before Snapshot Complete"); });
      run([&] { TellLeftOut(); });
    } else {
      ScanStopped();
      run([&] { maint.DeleteDatabase(database); });
    }
    state.Scanning = false;
    m_machine->CloseRegistry();
    if (!state.CloseDown) {
      run([&] { m_shell.UpdateCommandState(); });
      run([&] { m_shell.SetMousePointer(pointer::Default); });
    }
  }
  if (state.BeforeSSCompleteNotify) run([&] { m_shell.BeforeSnapshotEnded(); });
  if (!state.CloseDown) run([&] { m_shell.RefreshMenus(); });
}

bool clsSnapshots::SameMachine() {
  const std::string before = SnapshotMachine();
  if (before.empty() || before == m_machine->Folder()) return true;
  return m_shell.Ask(
             {fmt::format("The 'Before' snapshot was taken of the machine in {}. You are about to "
                          "take the 'After' snapshot of the machine in {}.\n\nCompare these two?",
                          before, m_machine->Folder()),
              ManagerTitle, Buttons::YesNo, BoxIcon::Question}) == Answer::Yes;
}

bool clsSnapshots::AfterSnapshot() {
  clsStatements run(m_shell, "frmSandrel.AfterSnapshot", WithAccessAdvice);
  bool complete = false;
  const bool ended = run.Command([&] { complete = After(run); },
                                 [&] {
                                   m_driveScan.reset();
                                   m_regScan.reset();
                                   if (m_changed) DiscardAfter();
                                   m_shell.State.Scanning = false;
                                 });
  return ended && complete;
}

void clsSnapshots::DiscardAfter() {
  try {
    DropAfterTables();
  } catch (const clsError& error) {
    m_shell.Tell(error.Description());
  }
}

bool clsSnapshots::After(clsStatements& run) {
  AppState& state = m_shell.State;
  m_changed = false;
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText(""); });
  if (!NeedMachine(run)) return false;
  std::optional<clsHomeLock> lock;
  run([&] { lock.emplace(m_home); });
  if (!lock) return false;
  bool goOn = true;
  run([&] {
    goOn = GetSnapshotLevel() != SnapshotLevel::BeforeAndAfter ||
           m_shell.Ask({"An 'After' snapshot already exists. Overwrite the existing snapshot?",
                        ManagerTitle, Buttons::YesNo, BoxIcon::None}) == Answer::Yes;
  });
  if (goOn) run([&] { goOn = SameMachine(); });
  if (!goOn) return false;
  const std::string database = m_home.WorkingDatabase();
  run([&] { m_shell.SetMousePointer(pointer::ArrowHourglass); });
  state.Scanning = true;
  run([&] { m_shell.UpdateCommandState(); });
  run([&] { CheckHives(); });
  m_leftOut.Clear();
  m_changed = true;
  clsTableMaint maint;
  run([&] { maint.CreateTempRegValueTable(database, "tblRegValue2"); });
  run([&] { maint.CreateTempFileTable(database, "tblFiles2"); });
  run([&] { maint.CreateTempIniValueTable(database, "tblIniValues2"); });
  const Tables tables{"tblFiles2", "tblFiles", "tblRegValue2", "tblIniValues2"};
  ScanDisk(run, tables, false);
  ScanRegistry(run, tables);
  run([&] { StoreTime("After"); });
  if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
  const bool complete = state.Scanning;
  if (complete) {
    run([&] { m_shell.SetStatusText("After Snapshot Complete"); });
    run([&] { TellLeftOut(); });
  } else {
    ScanStopped();
    run([&] { DropAfterTables(); });
  }
  state.Scanning = false;
  if (!state.CloseDown) {
    run([&] { m_shell.UpdateCommandState(); });
    run([&] { m_shell.SetMousePointer(pointer::Default); });
    run([&] { m_shell.RefreshMenus(); });
  }
  return complete;
}

void clsSnapshots::DropAfterTables() {
  const auto database = dao::DBEngine::FirstWorkspace().OpenDatabase(m_home.WorkingDatabase());
  dao::TableDefs tables = database->TableDefs();
  for (const char* table : {"tblRegValue2", "tblFiles2", "tblIniValues2"}) {
    if (tables.Contains(table)) tables.Delete(table);
  }
}

void clsSnapshots::ScanDisk(clsStatements& run, const Tables& tables, bool storeDrive) {
  if (!clsScanSettings(m_settings).DiskScan() || !m_shell.State.Scanning) return;
  clsScanContext context = Context();
  for (int i = 1;; ++i) {
    std::string folder;
    run([&] { folder = m_settings.GetSetting("ScanFolders", fmt::to_string(i)); });
    if (folder.empty() && i == 1 && storeDrive) {
      folder = m_machine->CurrentDrive();
      run([&] { m_settings.SaveSetting("ScanFolders", "1", folder); });
    }
    if (folder.empty()) return;
    m_driveScan = std::make_unique<clsScanDrive>(context);
    m_driveScan->PercentComplete = [this](int percent) { m_shell.SetProgress(percent); };
    m_driveScan->AckCancel = [this] { AcknowledgeCancel(); };
    run([&] { m_shell.SetProgress(0); });
    run([&] { m_shell.SetStatusText("Scanning Folder " + folder + "..."); });
    folder = clsPathText::NormaliseFolder(folder);
    m_driveScan->Database = m_home.WorkingDatabase();
    m_driveScan->PathTable = "tblPaths";
    m_driveScan->FileTable = tables.Files;
    m_driveScan->FirstFileTable = tables.FirstFiles;
    m_driveScan->IniSectionTable = "tblIniSections";
    m_driveScan->IniValueTable = tables.IniValues;
    run([&] { m_driveScan->StartDBTransaction(false); });
    run([&] { m_driveScan->DoXTreeFiles(clsPathText::AddSeparator(folder)); });
    run([&] { m_driveScan->CommitDBTransaction(false); });
    m_driveScan.reset();
  }
}

void clsSnapshots::ScanRegistry(clsStatements& run, const Tables& tables) {
  if (!clsScanSettings(m_settings).RegScan() || !m_shell.State.Scanning) return;
  clsScanContext context = Context();
  m_regScan = std::make_unique<clsScanReg>(context);
  m_regScan->PercentComplete = [this](int percent) { m_shell.SetProgress(percent); };
  m_regScan->AckCancel = [this] { AcknowledgeCancel(); };
  m_regScan->Database = m_home.WorkingDatabase();
  m_regScan->KeyTable = "tblRegKey";
  m_regScan->ValueTable = tables.RegValues;
  run([&] { m_regScan->StartDBTransaction(); });
  ScanRegistryHives(run);
  run([&] { m_regScan->CommitDBTransaction(); });
  m_regScan.reset();
}

void clsSnapshots::ScanRegistryHives(clsStatements& run) {
  clsScanSettings settings(m_settings);
  const std::string name = settings.RemoteName();
  const std::string prefix = name.empty() ? name : "\\\\" + name + "\\";
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Scanning Registry..."); });
  const bool remote = !name.empty();
  if (!remote) {
    run([&] { WaitForServer(); });
    if (!m_shell.State.Scanning) return;
    run([&] {
      for (const std::string& remark : m_machine->Registry().Remarks()) m_shell.Tell(remark);
    });
  }
  for (int i = 1;; ++i) {
    const ScanHive hive = HiveByIndex(i, remote);
    if (hive.Name.empty()) return;
    if (settings.IsSelected(hive)) {
      run([&] { m_shell.SetProgress(0); });
      run([&] { m_shell.SetStatusText("Scanning Registry - " + prefix + hive.Name + "..."); });
      run([&] { m_regScan->SetBranchCount("", hive.Key, name); });
      if (m_regScan->BranchCount() == 0 && remote) {
        run([&] {
          m_shell.Ask({"The remote registry on " + name + " cannot be accessed.", "Sandrel",
                       Buttons::Ok, BoxIcon::None});
        });
        return;
      }
      run([&] { m_regScan->DoXTreeBranch("", hive.Key, name); });
    }
    if (!m_shell.State.Scanning) return;
  }
}

// A Wine server that still holds changes in memory is given the time to write them. The hives are
// read as they are now, not as they were before the files were scanned.
void clsSnapshots::WaitForServer() {
  bool timePassed = clsScanSettings(m_settings).DiskScan();
  const clsServerWait wait(*m_machine);
  if (wait.IsNeeded()) {
    timePassed = true;
    m_shell.SetStatusText("Waiting for the Wine server to write the registry...");
    const bool waited = wait.Wait([this] {
      m_shell.DoEvents(false);
      return m_shell.State.Scanning && !m_regScan->IsCancelled();
    });
    if (!waited) {
      AcknowledgeCancel();
      return;
    }
  }
  if (timePassed) m_machine->CloseRegistry();
}

bool clsSnapshots::ConfirmCancelScan() {
  if (m_shell.Ask({"Cancel Scanning", ManagerTitle, Buttons::YesNo, BoxIcon::None}) !=
      Answer::Yes) {
    return false;
  }
  m_shell.SetStatusText("Stopping scan. Please wait...");
  if (m_driveScan != nullptr) {
    m_driveScan->Cancel();
  } else if (m_regScan != nullptr) {
    m_regScan->Cancel();
  } else {
    m_shell.State.Scanning = false;
  }
  return true;
}

void clsSnapshots::AcknowledgeCancel() {
  m_shell.State.Scanning = false;
  if (!m_shell.State.CloseDown) return;
  m_shell.SetStatusText("Scan Stopped");
  m_shell.Unload();
}

void clsSnapshots::ScanStopped() {
  if (!m_shell.State.CloseDown) m_shell.SetStatusText("Scan Stopped");
}

void clsSnapshots::TellLeftOut() {
  m_leftOut.Add(m_machine->LeftOutCounts());
  m_machine->LeftOutCounts().Clear();
  clsScanSettings settings(m_settings);
  if (settings.RegScan() && settings.RemoteName().empty()) {
    m_leftOut.Add(m_machine->Registry().LeftOutCounts());
  }
  if (const std::string summary = m_leftOut.Summary(); !summary.empty()) m_shell.Tell(summary);
}

void clsSnapshots::StoreTime(const char* key) {
  m_settings.SaveSetting(TimeSection, key, LocalDateText(std::time(nullptr)));
}

void clsSnapshots::mnuSnapShotRollUp_Click() {
  const clsHomeLock lock(m_home);
  {
    const auto workspace = dao::DBEngine::CreateWorkspace("RollUp");
    const auto database = workspace->OpenDatabase(m_home.WorkingDatabase());
    workspace->BeginTrans();
    dao::TableDefs tables = database->TableDefs();
    for (const char* table : {"tblFiles", "tblRegValue", "tblIniValues"}) {
      tables.Delete(table);
      tables.Rename(std::string(table) + "2", table);
    }
    workspace->CommitTrans();
  }
  m_shell.UpdateCommandState();
  m_settings.SaveSetting(TimeSection, "Before", m_settings.GetSetting(TimeSection, "After"));
  ShowLastBeforeSnapshot();
}

void clsSnapshots::ShowLastBeforeSnapshot() {
  m_shell.ShowBeforeTime("Last 'Before' Snapshot: " +
                         m_settings.GetSetting(TimeSection, "Before", "None"));
}

}  // namespace sandrel
