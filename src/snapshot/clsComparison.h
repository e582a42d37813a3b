// Writes the differences between the two snapshots of a working database into an analysis in the
// making: nine difference tables, two lookup tables and the statistics.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/clsShell.h"
#include "platform/dao/Workspace.h"
#include "snapshot/Differences.h"
#include "snapshot/StatsReport.h"
#include "snapshot/clsCoverage.h"
#include "snapshot/clsStatements.h"

namespace sandrel {

class clsComparison {
 public:
  /// Host paths of the working database and of a new, empty file. `shell` and `run` must outlive
  /// the object; `run` runs each step, so that a failed one can be repeated.
  clsComparison(clsShell& shell, clsStatements& run, std::string working, std::string analysis)
      : m_shell(shell), m_run(run), m_working(std::move(working)), m_path(std::move(analysis)) {}

  /// Files of the program's own by their Windows paths, which are no differences.
  std::vector<std::string> OwnFiles;

  /// Writes everything; `report` adds its rows to the statistics at the end. Ends early when a stop
  /// was asked for.
  void Write(const std::function<void(dao::Recordset& stats)>& report);
  /// What the snapshots left out, and how many differences were not told because of it.
  const LeftOutReport& LeftOut() const { return m_leftOut; }

  /// Told, for measuring, as "statement" or "copy" of a table begins and when the last one has
  /// ended ("").
  std::function<void(std::string_view phase, std::string_view table)> OnPhase;

 private:
  struct Copied {
    std::int64_t Told = 0, Hidden = 0;  // differences
  };

  void FillLookups();
  void Compare(const Difference& difference, const clsCoverage& coverage);
  Copied CopyRecords(const Difference& difference, const clsCoverage& coverage,
                     dao::Recordset& source, dao::Recordset& target);
  void Phase(std::string_view phase, std::string_view table) const {
    if (OnPhase) OnPhase(phase, table);
  }

  clsShell& m_shell;
  clsStatements& m_run;
  std::string m_working;
  std::string m_path;
  // They may be missing: a statement that was to make one can have failed and been ignored.
  std::shared_ptr<dao::Workspace> m_targets;
  std::unique_ptr<dao::Database> m_source, m_target;
  std::unique_ptr<dao::Recordset> m_stats;
  LeftOutReport m_leftOut;
  std::set<std::int64_t> m_types;  // of the registry values among the differences
};

}  // namespace sandrel
