// The snapshot commands: Before, After, Replace Before With After, and their cancelling.
//
// A command runs from end to end on the one thread; while it scans it lets window messages through,
// so `ConfirmCancelScan` may be called from inside it. Everything the user sees goes through the
// shell.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/clsLeftOut.h"
#include "common/clsNewFile.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsScanSettings.h"
#include "config/clsSettings.h"
#include "platform/machine/clsMachine.h"
#include "scan/clsScanDrive.h"
#include "scan/clsScanReg.h"
#include "snapshot/clsStatements.h"
#include "store/clsSnapshotRecord.h"
#include "store/clsTableMaint.h"

namespace sandrel {

/// How a Before command ended.
enum class SnapshotResult {
  Complete,  ///< there is a new snapshot
  Kept,      ///< the user keeps the one that exists
  Failed     ///< refused, cancelled, aborted or failed; what existed is as it was
};

class clsSnapshots {
 public:
  /// All four must outlive the object. `machine` may be null as long as no snapshot is taken.
  clsSnapshots(clsShell& shell, clsSettings& settings, const clsHome& home,
               std::shared_ptr<clsMachine> machine);

  /// Looks at another machine from now on; null for none. Not while a command runs.
  void SetMachine(std::shared_ptr<clsMachine> machine) { m_machine = std::move(machine); }
  /// Finds the machine for a command that has none; may raise what is missing.
  std::function<std::shared_ptr<clsMachine>()> FindMachine;

  /// Which snapshots exist.
  SnapshotLevel GetSnapshotLevel() const { return ReadSnapshotLevel(m_home.WorkingDatabase()); }

  /// Takes the Before snapshot into a fresh working database; asks before it overwrites another.
  /// The database takes the old one's place when it is complete and on disk: whatever happens
  /// before leaves the old snapshots. Returns when the snapshot is finished or refused.
  SnapshotResult mnuSnapShotBefore_Click();

  /// Takes the After snapshot of what the Before snapshot is of; asks when the settings say
  /// something else by now. It is added to a copy of the working database, which takes the place of
  /// that when it is complete and on disk. True when it is; false when the user refused to
  /// overwrite one, cancelled or aborted.
  bool AfterSnapshot();

  /// Makes the After snapshot the Before snapshot, in one transaction. False when it failed.
  bool mnuSnapShotRollUp_Click();

  /// Asks what an After snapshot would ask about the Before snapshot that exists: whether another
  /// machine, or other settings, are to be compared with it. What was answered with Yes is not
  /// asked again. Raises what is missing.
  bool ConfirmBefore();

  /// Shows when the Before snapshot was taken.
  void ShowLastBeforeSnapshot();

  /// Asks whether the scan is to be cancelled and tells the running scanner. True for Yes.
  bool ConfirmCancelScan();
  /// Tells the running scanner to stop, without asking.
  void CancelScan();

  /// A hive of the registry scan by its number from 1 up; an empty name behind the last one.
  /// Another computer has only two.
  static ScanHive HiveByIndex(int index, bool remote);

  /// What is known of the snapshots of this home.
  clsSnapshotRecord Record() const { return clsSnapshotRecord::Read(m_home.WorkingDatabase()); }

 private:
  using Creators = std::vector<std::function<void(const std::string& database)>>;
  struct Tables {
    const char* Files;
    const char* FirstFiles;
    const char* RegValues;
    const char* IniValues;
    const char* LeftOut;
  };
  using Lock = std::optional<clsHomeLock>;

  bool NeedMachine(clsStatements& run);
  bool MayOverwriteBefore();
  bool MayOverwriteAfter();
  void NeedDefinition(const clsSnapshotRecord& record) const;
  bool Confirm(const clsSnapshotRecord& record);
  bool SameMachine(const clsSnapshotRecord& record);
  bool SameDefinition();
  SnapshotResult Before(clsStatements& run, Lock& lock);
  bool After(clsStatements& run, Lock& lock);
  void CheckNeeds();
  bool BeginDatabase(clsStatements& run, const std::string& source, const Creators& creators);
  bool EndDatabase(clsStatements& run, const Tables& tables, const char* which);
  void ScanFolder(clsStatements& run, const Tables& tables, const std::string& folder);
  void ScanDisk(clsStatements& run, const Tables& tables);
  void ScanCurrentDrive(clsStatements& run);
  void ScanRegistry(clsStatements& run, const Tables& tables);
  void ScanRegistryHives(clsStatements& run);
  void LeaveOutHive(const ScanHive& hive, const std::string& detail);
  void LeaveOutHives(int first, const std::string& detail);
  void WaitForServer(clsMachine& machine);
  void Discard();
  void ReplaceBefore();
  void BeginScan(clsStatements& run);
  void EndScan(clsStatements& run);
  void ScanStopped();
  void AcknowledgeCancel();
  void TellLeftOut();
  clsScanContext Context();

  clsShell& m_shell;
  clsSettings& m_settings;
  const clsHome& m_home;
  std::shared_ptr<clsMachine> m_machine;
  // Of the running command:
  clsLeftOut m_leftOut;
  clsScanDefinition m_definition;     // what is scanned
  std::unique_ptr<clsNewFile> m_new;  // the working database in the making
  std::string m_confirmed;            // what the user said Yes to
  // Set while that scanner runs.
  std::unique_ptr<clsScanDrive> moDriveScan;
  std::unique_ptr<clsScanReg> moRegScan;
};

}  // namespace sandrel
