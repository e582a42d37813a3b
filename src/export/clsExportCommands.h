// The Export menu: the selected rows as a registry file, the selected files as copies.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "browser/clsMainControls.h"
#include "browser/clsPages.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "export/clsCopyProgress.h"
#include "export/clsRegEntry.h"
#include "platform/machine/clsMachine.h"
#include "snapshot/clsStatements.h"

namespace sandrel {

class clsExportCommands {
 public:
  /// All must outlive the object.
  clsExportCommands(clsShell& shell, clsMainControls& controls, clsPages& pages,
                    const clsHome& home);

  /// The machine that files are copied from; null when there is none.
  std::function<std::shared_ptr<clsMachine>()> Machine;
  /// Asks for the host folder that copies go to, under this caption; empty when cancelled.
  std::function<std::string(const std::string& caption)> ChooseDestination;
  /// The dialog of a running copy.
  std::function<std::unique_ptr<clsCopyProgress>()> MakeProgress;

  /// These raise what fails.
  void mnuFileExportToRegFile_Click();
  void mnuFileExportFiles_Click();

  /// How much of each path is left out when files are copied: the folder of the node that is
  /// selected, without a last backslash; empty above the folders.
  std::string RootPrefix() const;

 private:
  std::vector<std::size_t> SelectedSourceRows(int& source) const;
  std::string ChooseRegFile();
  void ExportToRegFile(clsStatements& run);

  clsShell& m_shell;
  clsMainControls& m_controls;
  clsPages& m_pages;
  const clsHome& m_home;
};

}  // namespace sandrel
