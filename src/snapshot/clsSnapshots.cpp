#include "snapshot/clsSnapshots.h"

#include <fmt/format.h>

#include <ctime>
#include <optional>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
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
  const std::vector<ScanHive>& hives = ScanHives(remote);
  const bool known = index >= 1 && static_cast<std::size_t>(index) <= hives.size();
  return known ? hives[static_cast<std::size_t>(index) - 1] : ScanHive{};
}

std::string clsSnapshots::SnapshotMachine(const char* which) {
  return m_settings.GetSetting(MachineSection, MachineKey(which));
}

// Each home folder has snapshots of its own.
std::string clsSnapshots::MachineKey(const char* which) const {
  return fmt::format("{} {}", which, m_home.Path());
}

clsScanContext clsSnapshots::Context() {
  return {Need(m_machine), m_settings, m_leftOut, m_home.Path(), [this] { m_shell.DoEvents(); }};
}

// A command begins: what is missing for it is told before anything is changed.
bool clsSnapshots::NeedMachine(clsStatements& run) {
  run([&] {
    if (m_machine == nullptr && FindMachine) m_machine = FindMachine();
    if (m_machine != nullptr) return;
    throw clsError(
        errnum::Machine,
        "There is no machine to look at. Choose one with Machine... in the Settings menu, or "
        "name its folder in $SANDREL_MACHINE.");
  });
  return m_machine != nullptr;
}

// Before anything is deleted: a hive that can't be read, or a time that can't be stored, must not
// cost the snapshot that exists; nor an exclusion the whole scan whose analysis it would end.
void clsSnapshots::CheckNeeds() {
  m_settings.NeedWritable();
  clsScanDrive::CheckExcludes(m_settings, *m_machine);
  m_machine->CloseRegistry();
  clsScanSettings settings(m_settings);
  if (settings.ScansLocalRegistry()) m_machine->Registry();
}

void clsSnapshots::mnuSnapShotBefore_Click() {
  clsStatements run(m_shell, "frmSandrel.mnuSnapShotBefore", WithAccessAdvice);
  std::optional<clsHomeLock> lock;  // also while an aborted command cleans up
  run.Command([&] { Before(run, lock); },
              [&] {
                EndScans();
                if (m_changed) DiscardBefore();
                m_shell.State.Scanning = false;
              });
}

// What an aborted command leaves open is undone by closing it.
void clsSnapshots::EndScans() {
  moDriveScan.reset();
  moRegScan.reset();
  dao::Workspace& workspace = dao::DBEngine::FirstWorkspace();
  if (workspace.InTransaction()) workspace.Rollback();
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

void clsSnapshots::Before(clsStatements& run, std::optional<clsHomeLock>& lock) {
  AppState& state = m_shell.State;
  m_changed = false;
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText(""); });
  bool goOn = false;
  if (NeedMachine(run)) {
    run([&] { lock.emplace(m_home); });
    if (lock) run([&] { goOn = MayOverwriteBefore(); });
  }
  if (goOn) {
    const std::string database = m_home.WorkingDatabase();
    BeginScan(run);
    clsTableMaint maint;
    run([&] { maint.DeleteDatabase(database); });
    m_changed = true;
    run([&] { maint.CreateDatabase(database); });
    MakeTables(run, {[&] { maint.CreateTempRegKeyTable(database, "tblRegKey"); },
                     [&] { maint.CreateTempRegValueTable(database, "tblRegValue"); },
                     [&] { maint.CreateTempPathTable(database, "tblPaths"); },
                     [&] { maint.CreateTempFileTable(database, "tblFiles"); },
                     [&] { maint.CreateTempIniSectionTable(database, "tblIniSections"); },
                     [&] { maint.CreateTempIniValueTable(database, "tblIniValues"); }});
    // A Before snapshot is worth nothing until it is complete: only then the disk is waited for.
    const Tables tables{"tblFiles", "", "tblRegValue", "tblIniValues",
                        dao::Durability::UntilPowerFails};
    ScanDisk(run, tables, true);
    ScanRegistry(run, tables);
    StoreSnapshot(run, "Before");
    run([&] { ShowLastBeforeSnapshot(); });
    if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
    if (state.Scanning) run([&] { clsFileWorks::Sync(database); });
    if (state.Scanning) {
      run([&] { m_shell.SetStatusText("Before Snapshot Complete"); });
      run([&] { TellLeftOut(); });
    } else {
      ScanStopped();
      run([&] { maint.DeleteDatabase(database); });
    }
    m_machine->CloseRegistry();
    EndScan(run);
  }
  if (state.BeforeSSCompleteNotify) run([&] { m_shell.BeforeSnapshotEnded(); });
  if (!state.CloseDown) run([&] { m_shell.RefreshMenus(); });
}

void clsSnapshots::BeginScan(clsStatements& run) {
  run([&] { m_shell.SetMousePointer(pointer::ArrowHourglass); });
  m_shell.State.Scanning = true;
  run([&] { m_shell.UpdateCommandState(); });
  run([&] { CheckNeeds(); });
  ForgetLeftOut();
}

void clsSnapshots::EndScan(clsStatements& run) {
  m_shell.State.Scanning = false;
  if (m_shell.State.CloseDown) {
    // The scanner's own answer may not have come, as when its walk ended by an error.
    m_shell.Unload();
    return;
  }
  run([&] { m_shell.UpdateCommandState(); });
  run([&] { m_shell.SetMousePointer(pointer::Default); });
}

// Also after a cancelled scan, whose time then stands for a snapshot that isn't there.
void clsSnapshots::StoreSnapshot(clsStatements& run, const char* which) {
  run([&] { m_settings.SaveSetting(TimeSection, which, LocalDateText(std::time(nullptr))); });
  run([&] { StoreMachine(which, m_machine->Folder()); });
}

bool clsSnapshots::SameMachine() {
  const std::string before = SnapshotMachine("Before");
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
  std::optional<clsHomeLock> lock;
  const bool ended = run.Command([&] { complete = After(run, lock); },
                                 [&] {
                                   EndScans();
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

bool clsSnapshots::After(clsStatements& run, std::optional<clsHomeLock>& lock) {
  AppState& state = m_shell.State;
  m_changed = false;
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText(""); });
  if (!NeedMachine(run)) return false;
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
  BeginScan(run);
  m_changed = true;
  clsTableMaint maint;
  MakeTables(run, {[&] { maint.CreateTempRegValueTable(database, "tblRegValue2"); },
                   [&] { maint.CreateTempFileTable(database, "tblFiles2"); },
                   [&] { maint.CreateTempIniValueTable(database, "tblIniValues2"); }});
  const Tables tables{"tblFiles2", "tblFiles", "tblRegValue2", "tblIniValues2",
                      dao::Durability::Full};
  ScanDisk(run, tables, false);
  ScanRegistry(run, tables);
  StoreSnapshot(run, "After");
  if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
  const bool complete = state.Scanning;
  if (complete) {
    run([&] { m_shell.SetStatusText("After Snapshot Complete"); });
    run([&] { TellLeftOut(); });
  } else {
    ScanStopped();
    run([&] { DropAfterTables(); });
  }
  EndScan(run);
  if (!state.CloseDown) run([&] { m_shell.RefreshMenus(); });
  return complete;
}

// In one transaction: a process that is killed leaves all of them or none, and the disk is waited
// for once.
void clsSnapshots::MakeTables(clsStatements& run,
                              std::initializer_list<std::function<void()>> creators) {
  dao::Workspace& workspace = dao::DBEngine::FirstWorkspace();
  run([&] { workspace.BeginTrans(); });
  for (const auto& create : creators) run(create);
  run([&] { workspace.CommitTrans(); });
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
  for (int i = 1;; ++i) {
    std::string folder;
    run([&] { folder = m_settings.GetSetting("ScanFolders", fmt::to_string(i)); });
    if (folder.empty() && i == 1 && storeDrive) {
      run([&] {
        folder = m_machine->CurrentDrive();
        if (folder.empty()) {
          throw clsError(errnum::Machine, fmt::format("The machine in {} has no drive to scan.",
                                                      m_machine->Folder()));
        }
      });
      if (folder.empty()) return;
      run([&] { m_settings.SaveSetting("ScanFolders", "1", folder); });
    }
    if (folder.empty()) return;
    ScanFolder(run, tables, folder);
  }
}

void clsSnapshots::ScanFolder(clsStatements& run, const Tables& tables, const std::string& folder) {
  clsScanContext context = Context();
  moDriveScan = std::make_unique<clsScanDrive>(context);
  moDriveScan->PercentComplete = [this](int percent) { m_shell.SetProgress(percent); };
  moDriveScan->AckCancel = [this] { AcknowledgeCancel(); };
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Scanning Folder " + folder + "..."); });
  moDriveScan->Database = m_home.WorkingDatabase();
  moDriveScan->PathTable = "tblPaths";
  moDriveScan->FileTable = tables.Files;
  moDriveScan->FirstFileTable = tables.FirstFiles;
  moDriveScan->IniSectionTable = "tblIniSections";
  moDriveScan->IniValueTable = tables.IniValues;
  moDriveScan->Durability = tables.Durability;
  // Every folder of the list gets its scanner; after a stop its walk ends at once.
  if (!m_shell.State.Scanning) moDriveScan->Cancel();
  run([&] { moDriveScan->StartDBTransaction(false); });
  const std::string root = clsPathText::AddSeparator(clsPathText::NormaliseFolder(folder));
  run([&] { moDriveScan->DoXTreeFiles(root); });
  run([&] { moDriveScan->CommitDBTransaction(false); });
  if (moDriveScan->IsCancelled() && m_shell.State.Scanning) AcknowledgeCancel();
  moDriveScan.reset();
}

void clsSnapshots::ScanRegistry(clsStatements& run, const Tables& tables) {
  if (!clsScanSettings(m_settings).RegScan() || !m_shell.State.Scanning) return;
  clsScanContext context = Context();
  moRegScan = std::make_unique<clsScanReg>(context);
  moRegScan->PercentComplete = [this](int percent) { m_shell.SetProgress(percent); };
  moRegScan->AckCancel = [this] { AcknowledgeCancel(); };
  moRegScan->Database = m_home.WorkingDatabase();
  moRegScan->KeyTable = "tblRegKey";
  moRegScan->ValueTable = tables.RegValues;
  moRegScan->Durability = tables.Durability;
  run([&] { moRegScan->StartDBTransaction(); });
  ScanRegistryHives(run);
  run([&] { moRegScan->CommitDBTransaction(); });
  if (moRegScan->IsCancelled() && m_shell.State.Scanning) AcknowledgeCancel();
  moRegScan.reset();
}

void clsSnapshots::ScanRegistryHives(clsStatements& run) {
  clsScanSettings settings(m_settings);
  const std::string name = settings.RemoteName();
  const std::string prefix = name.empty() ? name : "\\\\" + name + "\\";
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Scanning Registry..."); });
  const bool remote = !name.empty();
  run([&] {
    const auto scanned = remote ? m_machine->Connect(name) : m_machine;
    if (scanned == nullptr) return;  // told below, by its empty registry
    WaitForServer(*scanned);
    if (!m_shell.State.Scanning) return;
    for (const std::string& remark : scanned->Registry().Remarks()) m_shell.Tell(remark);
  });
  if (!m_shell.State.Scanning) return;
  for (int i = 1;; ++i) {
    const ScanHive hive = HiveByIndex(i, remote);
    if (hive.Name.empty()) return;
    if (settings.IsSelected(hive)) {
      run([&] { m_shell.SetProgress(0); });
      run([&] { m_shell.SetStatusText("Scanning Registry - " + prefix + hive.Name + "..."); });
      run([&] { moRegScan->SetBranchCount("", hive.Key, name); });
      if (moRegScan->BranchCount() == 0 && remote) {
        run([&] {
          m_shell.Ask({"The remote registry on " + name + " cannot be accessed.", "Sandrel",
                       Buttons::Ok, BoxIcon::None});
        });
        return;
      }
      run([&] { moRegScan->DoXTreeBranch("", hive.Key, name); });
    }
    if (!m_shell.State.Scanning) return;
  }
}

// A Wine server that still holds changes in memory is given the time to write them. The hives are
// read as they are now, not as they were before the files were scanned.
void clsSnapshots::WaitForServer(clsMachine& machine) {
  bool timePassed = clsScanSettings(m_settings).DiskScan();
  const clsServerWait wait(machine);
  if (wait.IsNeeded()) {
    timePassed = true;
    m_shell.SetStatusText("Waiting for the Wine server to write the registry...");
    const bool waited = wait.Wait([this] {
      m_shell.DoEvents(false);
      return m_shell.State.Scanning && !moRegScan->IsCancelled();
    });
    if (!waited) {
      AcknowledgeCancel();
      return;
    }
  }
  if (timePassed) machine.CloseRegistry();
}

bool clsSnapshots::ConfirmCancelScan() {
  if (m_shell.Ask({"Cancel Scanning", ManagerTitle, Buttons::YesNo, BoxIcon::None}) !=
      Answer::Yes) {
    return false;
  }
  CancelScan();
  return true;
}

void clsSnapshots::CancelScan() {
  m_shell.SetStatusText("Stopping scan. Please wait...");
  if (moDriveScan != nullptr) {
    moDriveScan->Cancel();
  } else if (moRegScan != nullptr) {
    moRegScan->Cancel();
  } else {
    m_shell.State.Scanning = false;
  }
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

void clsSnapshots::ForgetLeftOut() {
  m_leftOut.Clear();
  m_machine->LeftOutCounts().Clear();
}

void clsSnapshots::TellLeftOut() {
  m_leftOut.Add(m_machine->LeftOutCounts());
  m_machine->LeftOutCounts().Clear();
  clsScanSettings settings(m_settings);
  if (settings.ScansLocalRegistry()) {
    m_leftOut.Add(m_machine->Registry().LeftOutCounts());
  } else if (settings.RegScan()) {
    const auto remote = m_machine->RegConnectRegistry(settings.RemoteName());
    if (remote != nullptr) m_leftOut.Add(remote->LeftOutCounts());
  }
  if (const std::string summary = m_leftOut.Summary(); !summary.empty()) m_shell.Tell(summary);
}

void clsSnapshots::StoreMachine(const char* which, const std::string& folder) {
  m_settings.SaveSetting(MachineSection, MachineKey(which), folder);
}

void clsSnapshots::mnuSnapShotRollUp_Click() {
  clsStatements run(m_shell, "frmSandrel.mnuSnapShotRollUp");
  run.Command(
      [&] {
        bool replaced = false;
        run([&] {
          ReplaceBefore();
          replaced = true;
        });
        if (!replaced) return;
        run([&] { m_shell.UpdateCommandState(); });
        run([&] {
          m_settings.SaveSetting(TimeSection, "Before",
                                 m_settings.GetSetting(TimeSection, "After"));
        });
        run([&] { StoreMachine("Before", SnapshotMachine("After")); });
        run([&] { ShowLastBeforeSnapshot(); });
      },
      [] {});
}

void clsSnapshots::ReplaceBefore() {
  const clsHomeLock lock(m_home);
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

void clsSnapshots::ShowLastBeforeSnapshot() {
  m_shell.ShowBeforeTime("Last 'Before' Snapshot: " +
                         m_settings.GetSetting(TimeSection, "Before", "None"));
}

}  // namespace sandrel
