// Patterns of file names in the list of exclusions.
#pragma once

#include <string_view>

namespace sandrel {

/// All files of the folder.
inline constexpr std::string_view AllFiles = "*.*";

/// True for a name that holds "?" or "*".
bool IsPattern(std::string_view name);

/// The program's own match of a file's name against a pattern with "?" and "*"; raises 5 for a base
/// or an extension of the pattern that begins with "*".
bool MatchFileName(std::string_view name, std::string_view pattern);

/// Raises what `MatchFileName` raises for this pattern. Any other name, and `AllFiles`, is fine.
void CheckPattern(std::string_view name);

}  // namespace sandrel
