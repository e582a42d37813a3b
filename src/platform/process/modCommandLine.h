// Command lines as Windows reads them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace sandrel {

/// The words of a command line (UTF-8), split as Windows programs split theirs: blanks and tabs
/// part words, quotes keep them together, a backslash is one of its own except before a quote. No
/// shell has a part in it. A program's path without quotes may hold blanks: of all it could be, the
/// shortest that `isProgram` knows is taken, else the first word.
std::vector<std::string> SplitCommandLine(
    std::string_view text, const std::function<bool(const std::string&)>& isProgram = {});

}  // namespace sandrel
