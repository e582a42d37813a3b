// What a setting may hold: a text that no scan could work with is told when it is stored, not when
// the scan meets it.
#pragma once

#include <string>
#include <string_view>

#include "platform/machine/clsMachine.h"

namespace sandrel {

/// Raises 5 for what is no folder that can be scanned: no path on a drive, one with wildcards, or,
/// where `machine` isn't null, on a drive that it lacks. `folder` is a normalised Windows path. The
/// folder need not exist.
void CheckScanFolder(const std::string& folder, const clsMachine* machine);

/// Raises 5 for an exclusion that would end every analysis, or that names no path on a drive.
void CheckExclusion(const std::string& entry);

/// Raises 5, saying what is possible, for a text that a setting of a scan or of the window can't
/// hold. An empty text ends a list.
void CheckSetting(std::string_view section, std::string_view key, const std::string& text,
                  const clsMachine* machine);

}  // namespace sandrel
