// What leaves an analysis on the command line: a registry file, copies of files.
#pragma once

#include <memory>
#include <string>

#include "cli/clsCliShell.h"
#include "platform/machine/clsMachine.h"

namespace sandrel {

class clsExports {
 public:
  /// `analysis` is a host path.
  clsExports(clsCliShell& shell, std::string analysis)
      : m_shell(shell), m_analysis(std::move(analysis)) {}

  /// Writes the values of a registry page as the registry file `out`; with `match`, only those of
  /// rows that hold it, without regard to case. The number written; raises what fails.
  std::size_t ExportRegistry(int page, const std::string& out, const std::string& match);

  /// Copies the files of a page below `folder`, as they lie below their drive. The summary.
  std::string CopyFiles(int page, const std::string& folder, clsMachine& machine);

 private:
  clsCliShell& m_shell;
  std::string m_analysis;
};

}  // namespace sandrel
