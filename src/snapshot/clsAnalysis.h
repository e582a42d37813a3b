// Turns the two snapshots of the working database into an analysis: a database file of its own with
// nine difference tables, two lookup tables and the statistics.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/clsNewFile.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsScanDefinition.h"
#include "config/clsSettings.h"
#include "platform/machine/clsMachine.h"
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
  /// is complete: it takes the place of an older file of that name in one step then, which stays as
  /// it is otherwise.
  bool CreateViews(const std::string& ViewPath);

  /// Told, for measuring, as "statement" or "copy" of a table begins and when the last one has
  /// ended ("").
  std::function<void(std::string_view phase, std::string_view table)> OnPhase;

 private:
  bool Try(const std::function<bool()>& statement);
  void Create(clsStatements& run);
  std::vector<std::string> OwnFiles(const clsNewFile& analysis) const;
  void ApplyExclusions(clsStatements& run);

  clsShell& m_shell;
  clsSettings& m_settings;
  const clsHome& m_home;
  std::shared_ptr<clsMachine> m_machine;
  // Of the running command:
  clsScanDefinition m_definition;  // what the snapshots are of
  bool m_complete = false;         // the analysis stands in its place
};

}  // namespace sandrel
