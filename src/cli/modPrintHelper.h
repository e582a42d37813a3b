// The program that prints for sandrel-cli.
#pragma once

#include <string>

namespace sandrel {

/// Prints a page of an analysis to the PDF file `out` through sandrel-print, which lies beside this
/// program or in the folder libexec/sandrel beside its folder. Its exit status; it speaks to the
/// terminal itself. Raises 53 when it isn't installed.
int RunPrintHelper(const std::string& analysis, const std::string& out, const std::string& page);

}  // namespace sandrel
