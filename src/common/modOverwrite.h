// The question before a file of the user's is replaced.
#pragma once

#include <string>
#include <string_view>

#include "common/clsShell.h"

namespace sandrel {

/// The question's words; `name` is the file as it is to be shown.
std::string OverwriteText(std::string_view name);

/// True when no file stands at the host path, or the user lets it be overwritten.
bool MayOverwrite(clsShell& shell, const std::string& path);

}  // namespace sandrel
