// The platform's wildcards in file names.
#pragma once

#include <string_view>

namespace sandrel {

/// Whether the name (UTF-8) fits the pattern, without regard to case: ? is any one character, * any
/// number of them, and "*.*" every name.
bool MatchesWildcard(std::string_view name, std::string_view pattern);

}  // namespace sandrel
