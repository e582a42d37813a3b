// The snapshot commands: Before, After, Replace Before With After, and their cancelling.
//
// A command runs from end to end on the one thread; while it scans it lets window messages through,
// so `ConfirmCancelScan` may be called from inside it. Everything the user sees goes through the
// shell.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/clsLeftOut.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsScanSettings.h"
#include "config/clsSettings.h"
#include "platform/machine/clsMachine.h"
#include "scan/clsScanDrive.h"
#include "scan/clsScanReg.h"
#include "snapshot/clsStatements.h"
#include "store/clsTableMaint.h"

namespace sandrel {

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
  /// Returns when the snapshot is finished or refused.
  void mnuSnapShotBefore_Click();

  /// Takes the After snapshot beside the Before snapshot. True when it is complete; false when the
  /// user refused to overwrite one, cancelled or aborted.
  bool AfterSnapshot();

  /// Makes the After snapshot the Before snapshot, in one transaction.
  void mnuSnapShotRollUp_Click();

  /// Shows the stored time of the Before snapshot.
  void ShowLastBeforeSnapshot();

  /// Asks whether the scan is to be cancelled and tells the running scanner. True for Yes.
  bool ConfirmCancelScan();
  /// Tells the running scanner to stop, without asking.
  void CancelScan();

  /// A hive of the registry scan by its number from 1 up; an empty name behind the last one.
  /// Another computer has only two.
  static ScanHive HiveByIndex(int index, bool remote);

  /// The folder of the machine that a snapshot of this home, "Before" or "After", was taken of;
  /// empty when there is none.
  std::string SnapshotMachine(const char* which);

 private:
  struct Tables {
    const char* Files;
    const char* FirstFiles;
    const char* RegValues;
    const char* IniValues;
    dao::Durability Durability;
  };

  bool NeedMachine(clsStatements& run);
  bool MayOverwriteBefore();
  bool SameMachine();
  void Before(clsStatements& run, std::optional<clsHomeLock>& lock);
  bool After(clsStatements& run, std::optional<clsHomeLock>& lock);
  void CheckNeeds();
  void ScanFolder(clsStatements& run, const Tables& tables, const std::string& folder);
  void ScanDisk(clsStatements& run, const Tables& tables, bool storeDrive);
  void ScanRegistry(clsStatements& run, const Tables& tables);
  void ScanRegistryHives(clsStatements& run);
  void WaitForServer(clsMachine& machine);
  void MakeTables(clsStatements& run, std::initializer_list<std::function<void()>> creators);
  void EndScans();
  void ReplaceBefore();
  void DropAfterTables();
  void DiscardBefore();
  void DiscardAfter();
  void StoreSnapshot(clsStatements& run, const char* which);
  void BeginScan(clsStatements& run);
  void EndScan(clsStatements& run);
  void StoreMachine(const char* which, const std::string& folder);
  std::string MachineKey(const char* which) const;
  void ForgetLeftOut();
  void ScanStopped();
  void AcknowledgeCancel();
  void TellLeftOut();
  clsScanContext Context();

  clsShell& m_shell;
  clsSettings& m_settings;
  const clsHome& m_home;
  std::shared_ptr<clsMachine> m_machine;
  clsLeftOut m_leftOut;
  bool m_changed = false;  // the running command has begun to change the working database
  // Set while that scanner runs.
  std::unique_ptr<clsScanDrive> moDriveScan;
  std::unique_ptr<clsScanReg> moRegScan;
};

}  // namespace sandrel
