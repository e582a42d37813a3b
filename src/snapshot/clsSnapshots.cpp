#include "snapshot/clsSnapshots.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/modDateText.h"
#include "platform/dao/Workspace.h"
#include "platform/machine/clsServerWait.h"
#include "store/clsLeftOutTable.h"

namespace sandrel {
namespace {

constexpr const char* ManagerTitle = "Sandrel Manager";

// A snapshot is worth nothing until it is complete: only then the disk is waited for.
constexpr dao::Durability WhileScanning = dao::Durability::UntilPowerFails;

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

clsScanContext clsSnapshots::Context() {
  return {Need(m_machine), m_definition, m_leftOut, m_home.Path(), [this] { m_shell.DoEvents(); }};
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

// Before the long scan: what would end it, or the analysis that it is for.
void clsSnapshots::CheckNeeds() {
  clsTableMaint().NeedFree(m_home.WorkingDatabase());
  clsScanDrive::CheckExcludes(m_definition, *m_machine);
  m_machine->CloseRegistry();
  if (clsScanSettings(m_definition).ScansLocalRegistry()) m_machine->Registry();
}

SnapshotResult clsSnapshots::mnuSnapShotBefore_Click() {
  clsStatements run(m_shell, "frmSandrel.mnuSnapShotBefore", WithAccessAdvice);
  SnapshotResult result = SnapshotResult::Failed;
  Lock lock;  // also while an aborted command cleans up
  const bool ended = run.Command([&] { result = Before(run, lock); }, [&] { Discard(); });
  return ended ? result : SnapshotResult::Failed;
}

// What an aborted or cancelled command leaves open is undone by closing it.
void clsSnapshots::Discard() {
  moDriveScan.reset();
  moRegScan.reset();
  dao::Workspace& workspace = dao::DBEngine::FirstWorkspace();
  if (workspace.InTransaction()) workspace.Rollback();
  m_new.reset();
  m_shell.State.Scanning = false;
}

bool clsSnapshots::MayOverwriteBefore() {
  std::string question;
  BoxIcon icon = BoxIcon::None;
  switch (GetSnapshotLevel()) {
    case SnapshotLevel::None:
      return true;
    case SnapshotLevel::Before:
      question = "A 'Before' snapshot already exists. Overwrite the existing snapshot?";
      break;
    case SnapshotLevel::BeforeAndAfter:
      icon = BoxIcon::Exclamation;  // an Enter too many costs nothing
      question =
          "'Before' and 'After' snapshots already exists. If you continue BOTH snapshots will be "
          "overwritten!\n\nOverwrite the existing snapshots?";
      break;
  }
  return m_shell.Ask({question, ManagerTitle, Buttons::YesNo, icon}) == Answer::Yes;
}

SnapshotResult clsSnapshots::Before(clsStatements& run, Lock& lock) {
  AppState& state = m_shell.State;
  SnapshotResult result = SnapshotResult::Failed;
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText(""); });
  bool goOn = false;
  if (NeedMachine(run) && run([&] { lock.emplace(m_home); })) {
    run([&] {
      goOn = MayOverwriteBefore();
      if (!goOn) result = SnapshotResult::Kept;
    });
  }
  if (goOn) {
    m_definition = clsScanDefinition::Of(m_settings);
    BeginScan(run);
    clsTableMaint maint;
    const Creators creators = {
        [&](const std::string& database) { maint.CreateTempRegKeyTable(database, "tblRegKey"); },
        [&](const std::string& database) {
          maint.CreateTempRegValueTable(database, "tblRegValue");
        },
        [&](const std::string& database) { maint.CreateTempPathTable(database, "tblPaths"); },
        [&](const std::string& database) { maint.CreateTempFileTable(database, "tblFiles"); },
        [&](const std::string& database) {
          maint.CreateTempIniSectionTable(database, "tblIniSections");
        },
        [&](const std::string& database) {
          maint.CreateTempIniValueTable(database, "tblIniValues");
        },
        [&](const std::string& database) { maint.CreateTempLeftOutTable(database, "tblLeftOut"); }};
    if (BeginDatabase(run, "", creators)) {
      const Tables tables{"tblFiles", "", "tblRegValue", "tblIniValues", "tblLeftOut"};
      if (clsScanSettings(m_definition).List("ScanFolders").empty()) ScanCurrentDrive(run);
      ScanDisk(run, tables);
      ScanRegistry(run, tables);
      if (EndDatabase(run, tables, "Before")) result = SnapshotResult::Complete;
    }
    if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
    if (result == SnapshotResult::Complete) {
      run([&] { ShowLastBeforeSnapshot(); });
      run([&] { m_shell.SetStatusText("Before Snapshot Complete"); });
      run([&] { TellLeftOut(); });
    } else {
      ScanStopped();
    }
    EndScan(run);
  }
  if (state.BeforeSSCompleteNotify) run([&] { m_shell.BeforeSnapshotEnded(); });
  if (!state.CloseDown) run([&] { m_shell.RefreshMenus(); });
  return result;
}

void clsSnapshots::BeginScan(clsStatements& run) {
  run([&] { m_shell.SetMousePointer(pointer::ArrowHourglass); });
  m_shell.State.Scanning = true;
  run([&] { m_shell.UpdateCommandState(); });
  run([&] { CheckNeeds(); });
  m_leftOut.Clear();
}

void clsSnapshots::EndScan(clsStatements& run) {
  Discard();
  m_machine->CloseRegistry();
  if (m_shell.State.CloseDown) {
    // The scanner's own answer may not have come, as when its walk ended by an error.
    m_shell.Unload();
    return;
  }
  run([&] { m_shell.UpdateCommandState(); });
  run([&] { m_shell.SetMousePointer(pointer::Default); });
}

// Begins the working database that is to take the present one's place: a copy of `source`, or an
// empty one, with new tables. They are made in one transaction, as the disk is waited for once
// then.
bool clsSnapshots::BeginDatabase(clsStatements& run, const std::string& source,
                                 const Creators& creators) {
  if (!m_shell.State.Scanning) return false;
  return run([&] { m_new = std::make_unique<clsNewFile>(m_home.WorkingDatabase()); }) && run([&] {
           if (source.empty()) {
             clsTableMaint().CreateDatabase(m_new->Path());
           } else {
             m_new->CopyFrom(source);
           }
         }) &&
         run([&] {
           dao::InTransaction(dao::DBEngine::FirstWorkspace(), [&] {
             for (const auto& create : creators) create(m_new->Path());
           });
         });
}

// The snapshot is there, with its time, its machine and its definition, when this gives true; else
// the old ones are.
bool clsSnapshots::EndDatabase(clsStatements& run, const Tables& tables, const char* which) {
  if (!m_shell.State.Scanning) return false;
  return run([&] { clsLeftOutTable(m_new->Path(), tables.LeftOut).Write(m_leftOut); }) && run([&] {
           clsSnapshotRecord record = clsSnapshotRecord::Read(m_new->Path());
           record.Set(which, LocalDateText(std::time(nullptr)), m_machine->Folder());
           record.Definition = m_definition;
           record.Write(m_new->Path());
         }) &&
         m_shell.State.Scanning &&
         run([&] { clsTableMaint().ReplaceDatabase(*m_new, m_home.WorkingDatabase()); });
}

bool clsSnapshots::SameMachine(const clsSnapshotRecord& record) {
  const std::string before = record.Machine("Before");
  if (before.empty() || before == m_machine->Folder()) return true;
  return m_shell.Ask(
             {fmt::format("The 'Before' snapshot was taken of the machine in {}. You are about to "
                          "take the 'After' snapshot of the machine in {}.\n\nCompare these two?",
                          before, m_machine->Folder()),
              ManagerTitle, Buttons::YesNo, BoxIcon::Question}) == Answer::Yes;
}

bool clsSnapshots::Confirm(const clsSnapshotRecord& record) {
  m_definition = record.Definition;
  std::string asked = record.Time("Before") + record.Machine("Before") + m_machine->Folder();
  for (const std::string& difference :
       m_definition.Differences(clsScanDefinition::Of(m_settings))) {
    asked += difference;
  }
  if (asked == m_confirmed) return true;
  if (!SameMachine(record) || !SameDefinition()) return false;
  m_confirmed = std::move(asked);
  return true;
}

bool clsSnapshots::ConfirmBefore() {
  if (m_machine == nullptr && FindMachine) m_machine = FindMachine();
  if (m_machine == nullptr) throw clsError(errnum::Machine, "There is no machine to look at.");
  const clsSnapshotRecord record = Record();
  NeedDefinition(record);
  return Confirm(record);
}

// Both snapshots of a pair scan the same: what only one of them looked at would count as new or
// deleted.
bool clsSnapshots::SameDefinition() {
  const clsScanDefinition now = clsScanDefinition::Of(m_settings);
  const std::vector<std::string> differences = m_definition.Differences(now);
  if (differences.empty()) return true;
  constexpr std::size_t MostTold = 12;
  std::string list;
  for (std::size_t i = 0; i < std::min(differences.size(), MostTold); ++i) {
    list += "\n    " + differences[i];
  }
  if (differences.size() > MostTold) {
    list += fmt::format("\n    and {} more", differences.size() - MostTold);
  }
  return m_shell.Ask({fmt::format("The settings of the scan have changed since the 'Before' "
                                  "snapshot was taken:\n{}\n\nTake the 'After' snapshot by the "
                                  "settings of the 'Before' snapshot?",
                                  list),
                      ManagerTitle, Buttons::YesNo, BoxIcon::Question}) == Answer::Yes;
}

bool clsSnapshots::AfterSnapshot() {
  clsStatements run(m_shell, "frmSandrel.AfterSnapshot", WithAccessAdvice);
  bool complete = false;
  Lock lock;
  const bool ended = run.Command([&] { complete = After(run, lock); }, [&] { Discard(); });
  return ended && complete;
}

bool clsSnapshots::MayOverwriteAfter() {
  return GetSnapshotLevel() != SnapshotLevel::BeforeAndAfter ||
         m_shell.Ask({"An 'After' snapshot already exists. Overwrite the existing snapshot?",
                      ManagerTitle, Buttons::YesNo, BoxIcon::None}) == Answer::Yes;
}

// Without it nobody knows what the Before snapshot looked at: what it didn't would count as new.
void clsSnapshots::NeedDefinition(const clsSnapshotRecord& record) const {
  if (GetSnapshotLevel() == SnapshotLevel::None || !record.Definition.IsEmpty()) return;
  throw clsError(errnum::InvalidOperation,
                 "The 'Before' snapshot was taken by an earlier version of Sandrel, and nothing "
                 "can be compared with it. Take a new one.",
                 "clsSnapshots.NeedDefinition");
}

bool clsSnapshots::After(clsStatements& run, Lock& lock) {
  AppState& state = m_shell.State;
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText(""); });
  if (!NeedMachine(run) || !run([&] { lock.emplace(m_home); })) return false;
  const clsSnapshotRecord record = Record();
  bool goOn = false;
  run([&] {
    NeedDefinition(record);
    goOn = MayOverwriteAfter() && Confirm(record);
  });
  if (!goOn) return false;
  BeginScan(run);
  clsTableMaint maint;
  const Creators creators = {
      [&](const std::string& database) { maint.CreateTempRegValueTable(database, "tblRegValue2"); },
      [&](const std::string& database) { maint.CreateTempFileTable(database, "tblFiles2"); },
      [&](const std::string& database) {
        maint.CreateTempIniValueTable(database, "tblIniValues2");
      },
      [&](const std::string& database) { maint.CreateTempLeftOutTable(database, "tblLeftOut2"); }};
  bool complete = false;
  if (BeginDatabase(run, m_home.WorkingDatabase(), creators)) {
    const Tables tables{"tblFiles2", "tblFiles", "tblRegValue2", "tblIniValues2", "tblLeftOut2"};
    ScanDisk(run, tables);
    ScanRegistry(run, tables);
    complete = EndDatabase(run, tables, "After");
  }
  if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
  if (complete) {
    run([&] { m_shell.SetStatusText("After Snapshot Complete"); });
    run([&] { TellLeftOut(); });
  } else {
    ScanStopped();
  }
  EndScan(run);
  if (!state.CloseDown) run([&] { m_shell.RefreshMenus(); });
  return complete;
}

// A first snapshot without a list of folders scans the machine's current drive, which the list has
// from then on.
void clsSnapshots::ScanCurrentDrive(clsStatements& run) {
  if (!clsScanSettings(m_definition).DiskScan()) return;
  run([&] {
    const std::string drive = m_machine->CurrentDrive();
    if (drive.empty()) {
      throw clsError(errnum::Machine,
                     fmt::format("The machine in {} has no drive to scan.", m_machine->Folder()));
    }
    m_definition.Set("ScanFolders", "1", drive);
    m_settings.SaveSetting("ScanFolders", "1", drive);
  });
}

void clsSnapshots::ScanDisk(clsStatements& run, const Tables& tables) {
  clsScanSettings settings(m_definition);
  if (!settings.DiskScan() || !m_shell.State.Scanning) return;
  for (const std::string& folder : settings.List("ScanFolders")) ScanFolder(run, tables, folder);
}

void clsSnapshots::ScanFolder(clsStatements& run, const Tables& tables, const std::string& folder) {
  clsScanContext context = Context();
  moDriveScan = std::make_unique<clsScanDrive>(context);
  moDriveScan->PercentComplete = [this](int percent) { m_shell.SetProgress(percent); };
  moDriveScan->AckCancel = [this] { AcknowledgeCancel(); };
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Scanning Folder " + folder + "..."); });
  moDriveScan->Database = m_new->Path();
  moDriveScan->PathTable = "tblPaths";
  moDriveScan->FileTable = tables.Files;
  moDriveScan->FirstFileTable = tables.FirstFiles;
  moDriveScan->IniSectionTable = "tblIniSections";
  moDriveScan->IniValueTable = tables.IniValues;
  moDriveScan->Durability = WhileScanning;
  // Every folder of the list gets its scanner; after a stop its walk ends at once.
  if (!m_shell.State.Scanning) moDriveScan->Cancel();
  const bool started = run([&] { moDriveScan->StartDBTransaction(false); });
  const std::string root = clsPathText::AddSeparator(clsPathText::NormaliseFolder(folder));
  const bool walked = run([&] { moDriveScan->DoXTreeFiles(root); });
  const bool committed = run([&] { moDriveScan->CommitDBTransaction(false); });
  // What the user ignores is not compared. A folder that isn't there is empty, not unread.
  if (!started || !walked || !committed) {
    const auto refusal = m_machine->Refusal(root);
    if (refusal || m_machine->FolderExists(root)) {
      m_leftOut.Add({LeftOut::UnfinishedFolder, 0, root, "", refusal.value_or("")});
    }
  }
  if (moDriveScan->IsCancelled() && m_shell.State.Scanning) AcknowledgeCancel();
  moDriveScan.reset();
}

void clsSnapshots::ScanRegistry(clsStatements& run, const Tables& tables) {
  if (!clsScanSettings(m_definition).RegScan() || !m_shell.State.Scanning) return;
  clsScanContext context = Context();
  moRegScan = std::make_unique<clsScanReg>(context);
  moRegScan->PercentComplete = [this](int percent) { m_shell.SetProgress(percent); };
  moRegScan->AckCancel = [this] { AcknowledgeCancel(); };
  moRegScan->Database = m_new->Path();
  moRegScan->KeyTable = "tblRegKey";
  moRegScan->ValueTable = tables.RegValues;
  moRegScan->Durability = WhileScanning;
  const bool started = run([&] { moRegScan->StartDBTransaction(); });
  ScanRegistryHives(run);
  const bool committed = run([&] { moRegScan->CommitDBTransaction(); });
  if (!started || !committed) LeaveOutHives(1, "");
  if (moRegScan->IsCancelled() && m_shell.State.Scanning) AcknowledgeCancel();
  moRegScan.reset();
}

void clsSnapshots::ScanRegistryHives(clsStatements& run) {
  clsScanSettings settings(m_definition);
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
        LeaveOutHives(i, "can't be reached");
        return;
      }
      if (!run([&] { moRegScan->DoXTreeBranch("", hive.Key, name); })) LeaveOutHive(hive, "");
    }
    if (!m_shell.State.Scanning) return;
  }
}

void clsSnapshots::LeaveOutHive(const ScanHive& hive, const std::string& detail) {
  m_leftOut.Add({LeftOut::UnfinishedKey, static_cast<std::int32_t>(hive.Key), "", "", detail});
}

// The selected hives from this one on.
void clsSnapshots::LeaveOutHives(int first, const std::string& detail) {
  clsScanSettings settings(m_definition);
  const bool remote = !settings.RemoteName().empty();
  for (int i = first; !HiveByIndex(i, remote).Name.empty(); ++i) {
    const ScanHive hive = HiveByIndex(i, remote);
    if (settings.IsSelected(hive)) LeaveOutHive(hive, detail);
  }
}

// A Wine server that still holds changes in memory is given the time to write them. The hives are
// read as they are now, not as they were before the files were scanned.
void clsSnapshots::WaitForServer(clsMachine& machine) {
  bool timePassed = clsScanSettings(m_definition).DiskScan();
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

void clsSnapshots::TellLeftOut() {
  if (const std::string summary = m_leftOut.Summary(); !summary.empty()) m_shell.Tell(summary);
}

bool clsSnapshots::mnuSnapShotRollUp_Click() {
  clsStatements run(m_shell, "frmSandrel.mnuSnapShotRollUp");
  bool replaced = false;
  run.Command(
      [&] {
        replaced = run([&] { ReplaceBefore(); });
        if (!replaced) return;
        run([&] { m_shell.UpdateCommandState(); });
        run([&] { ShowLastBeforeSnapshot(); });
      },
      [] {});
  return replaced;
}

void clsSnapshots::ReplaceBefore() {
  const clsHomeLock lock(m_home);
  const std::string working = m_home.WorkingDatabase();
  clsSnapshotRecord record = Record();
  record.Set("Before", record.Time("After"), record.Machine("After"));
  dao::Workspace& workspace = dao::DBEngine::FirstWorkspace();
  const auto database = workspace.OpenDatabase(working);
  dao::InTransaction(workspace, [&] {
    for (const char* table : {"tblLeftOut", "tblLeftOut2"}) {
      clsLeftOutTable(working, table).CreateMissing();
    }
    dao::TableDefs tables = database->TableDefs();
    for (const char* table : {"tblFiles", "tblRegValue", "tblIniValues", "tblLeftOut"}) {
      tables.Delete(table);
      tables.Rename(std::string(table) + "2", table);
    }
    record.Write(working);
  });
}

void clsSnapshots::ShowLastBeforeSnapshot() {
  const std::string time = Record().Time("Before");
  m_shell.ShowBeforeTime("Last 'Before' Snapshot: " + (time.empty() ? "None" : time));
}

}  // namespace sandrel
