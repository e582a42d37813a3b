// Which files of the user's may be written over, and by what.
#pragma once

#include <string>

namespace sandrel {

/// Raises 75 when an export or a printed page can't be written to the host path because of what
/// stands there: a database, a hive of a machine, the settings, or no regular file. A question
/// that was answered with Yes is no reason to destroy what the program reads.
void NeedTarget(const std::string& path);

/// The same for an analysis, which may take the place of another one. Whether the file there holds
/// snapshots is not looked at.
void NeedAnalysisTarget(const std::string& path);

/// The same for a copy of a machine's file, which may be a hive or a database itself: only a
/// database of the program's own is refused.
void NeedCopyTarget(const std::string& path);

}  // namespace sandrel
