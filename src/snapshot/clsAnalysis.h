// Turns the two snapshots of the working database into an analysis: a database file of its own with
// nine difference tables, two lookup tables and the statistics.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"
#include "platform/dao/Workspace.h"
#include "platform/machine/clsMachine.h"
#include "scan/clsScanContext.h"
#include "snapshot/clsSnapshots.h"
#include "snapshot/clsStatements.h"

namespace sandrel {

class clsAnalysis {
 public:
  /// All must outlive the object. `machine` may be null as long as no analysis is made.
  clsAnalysis(clsShell& shell, clsSettings& settings, const clsHome& home,
              std::shared_ptr<clsMachine> machine);

  /// Looks at another machine from now on; null for none. Not while a command runs.
  void SetMachine(std::shared_ptr<clsMachine> machine) { m_machine = std::move(machine); }

  /// Asks for the analysis file; an empty title is "Create Analysis". Empty when the user
  /// cancelled.
  std::string GetViewNameAndLocation(const std::string& title);
  /// Asks where to save a file of another kind. Empty when the user cancelled.
  std::string SaveDialog(const std::string& title, const std::string& extension,
                         const std::string& filter);

  /// Asks for the file, takes the After snapshot and makes the analysis.
  void mnuSnapShotAfter_Click(clsSnapshots& snapshots);

  /// The same with the file known: asks before it overwrites one. True when the analysis is
  /// complete.
  bool AfterInto(clsSnapshots& snapshots, const std::string& path);
  /// Raises why an analysis can't be written to `path` (host path).
  void CheckTarget(const std::string& path) const;
  /// Whether an analysis can be written to `path` (host path): reports why not, and asks before one
  /// is overwritten.
  bool MayCreate(const std::string& path);
  /// Takes the After snapshot and makes the analysis without a question about its file. True when
  /// it is complete.
  bool AfterAndViews(clsSnapshots& snapshots, const std::string& path);

  /// Makes the analysis `ViewPath` (host path), or the one that the program's state names when it
  /// is empty, from the snapshots, after taking the exclusions out of them for good. True when it
  /// is complete. A cancelled one is deleted again.
  bool CreateViews(const std::string& ViewPath);

  /// The value of a statistics row of the open analysis; empty without one.
  std::string GetStat(std::string_view Description) const;

  /// Told, for measuring, as "statement" or "copy" of a table begins and when the last one has
  /// ended ("").
  std::function<void(std::string_view phase, std::string_view table)> OnPhase;

 private:
  bool Try(const std::function<bool()>& statement);
  void Create(clsStatements& run);
  void ApplyExclusions(clsStatements& run);
  // The objects may be missing: a statement that was to make one can have failed and been ignored.
  void FillLookups(clsStatements& run, dao::Workspace& targets,
                   const std::unique_ptr<dao::Database>& target);
  void CompareAll(clsStatements& run, dao::Workspace& targets,
                  const std::unique_ptr<dao::Database>& source,
                  const std::unique_ptr<dao::Database>& target,
                  const std::unique_ptr<dao::Recordset>& stats);
  void CopyRecords(dao::Recordset& source, dao::Recordset& target);
  static void AddStatRow(dao::Recordset& stats, std::string_view description,
                         dao::Recordset& source);
  void Phase(std::string_view phase, std::string_view table) const {
    if (OnPhase) OnPhase(phase, table);
  }

  clsShell& m_shell;
  clsSettings& m_settings;
  const clsHome& m_home;
  std::shared_ptr<clsMachine> m_machine;
  bool m_complete = false;       // the running command has written all of the analysis
  bool m_targetTouched = false;  // the running command has begun to write the analysis file
};

}  // namespace sandrel
