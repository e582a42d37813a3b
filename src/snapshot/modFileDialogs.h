// The dialogs that ask for a file of the program's own. An error in one is reported as that of a
// command.
#pragma once

#include <string>

#include "common/clsShell.h"

namespace sandrel {

/// Asks for an analysis file; an empty title is "Create Analysis". The dialog begins in the host
/// folder `folder`. Empty when the user cancelled.
std::string GetViewNameAndLocation(clsShell& shell, const std::string& folder,
                                   const std::string& title);

/// Asks where to save a file of another kind, with its extension without a dot and its filter as
/// FileDialog has it. Empty when the user cancelled.
std::string SaveDialog(clsShell& shell, const std::string& folder, const std::string& title,
                       const std::string& extension, const std::string& filter);

}  // namespace sandrel
