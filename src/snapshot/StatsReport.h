// The statistics of an analysis behind its nine counts: a report of the scan settings in force.
#pragma once

#include <string>
#include <string_view>

#include "config/clsSettingsSource.h"
#include "platform/dao/Recordset.h"
#include "platform/dao/Workspace.h"
#include "platform/machine/clsMachine.h"

namespace sandrel {

/// Adds one row. A value longer than its field is shortened.
void AddStatsRow(dao::Recordset& stats, std::string_view description, std::string_view value);

/// Adds the report's rows to the open table of statistics. `appPath` is Sandrel's own folder.
void WriteStatsReport(dao::Recordset& stats, clsSettingsSource& settings, clsMachine& machine,
                      const std::string& appPath);

/// The value of the row of that description in the analysis at the host path `analysis`; empty
/// without one. Raises 3078 when the file is no analysis.
std::string ReadStat(dao::Workspace& workspace, const std::string& analysis,
                     std::string_view description);

}  // namespace sandrel
