// Prints a page of an analysis without the window.
#pragma once

#include <string>

#include "common/clsShell.h"
#include "config/clsSettings.h"
#include "platform/printing/clsPrinter.h"

namespace sandrel {

/// Prints a page of the analysis at a host path to the file `out`, in the font of the settings. The
/// number of sheets; rows beyond what a grid holds are told and left out. Raises 3078 for a file
/// that is no analysis, and what printing does; `out` is as it was then.
int PrintPage(const std::string& analysis, int page, const std::string& out, clsPrinter& printer,
              clsShell& shell, clsSettings& settings);

}  // namespace sandrel
