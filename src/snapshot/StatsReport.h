// The statistics of an analysis behind its nine counts: a report of the scan settings in force.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/clsSettingsSource.h"
#include "platform/dao/Recordset.h"
#include "platform/dao/Workspace.h"
#include "platform/machine/clsMachine.h"
#include "store/clsLeftOutTable.h"

namespace sandrel {

/// What the two snapshots of an analysis left out.
struct LeftOutReport {
  std::vector<LeftOutRow> Before, After;
  std::int64_t NotCompared = 0;  ///< differences that were not told because of it
};

/// The name of a root key by its number in the store; empty for any other.
std::string HiveName(std::int64_t hive);
/// Where an item stands: "C:\Folder\file", "HKEY_LOCAL_MACHINE\Software".
std::string PlaceOf(const LeftOutRow& row);

/// Adds one row. A value longer than its field is shortened.
void AddStatsRow(dao::Recordset& stats, std::string_view description, std::string_view value);

/// Adds the report's rows to the open table of statistics. `appPath` is Sandrel's own folder.
void WriteStatsReport(dao::Recordset& stats, clsSettingsSource& settings, clsMachine& machine,
                      const std::string& appPath, const LeftOutReport& leftOut);

/// The value of the row of that description in the analysis at the host path `analysis`; empty
/// without one. Raises 3078 when the file is no analysis.
std::string ReadStat(dao::Workspace& workspace, const std::string& analysis,
                     std::string_view description);

}  // namespace sandrel
