// Which files of the user's nothing but an analysis may take the place of.
#pragma once

#include <string>

namespace sandrel {

/// True when the file at the host path is a database of the program's: an analysis, or snapshots.
/// False where none can be read.
bool IsDatabase(const std::string& path);

/// Raises 75 when an export, a printed page or a copy can't be written to the host path because of
/// what stands there: a database of the program's, which such a file would destroy, or no regular
/// file.
void NeedTarget(const std::string& path);

}  // namespace sandrel
