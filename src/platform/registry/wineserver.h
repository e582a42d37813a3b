// Where a Wine server leaves its traces.
#pragma once

#include <string>
#include <vector>

namespace sandrel::wineserver {

/// The files that a server running on the prefix `folder` could hold locked: Wine's own place
/// first, then the one that Debian's build notes in the prefix. Empty when the folder doesn't
/// exist.
std::vector<std::string> LockFiles(const std::string& folder);

}  // namespace sandrel::wineserver
