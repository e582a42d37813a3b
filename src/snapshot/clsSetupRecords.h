// Records of shared DLLs: what an installation did to a DLL that was there already shows only in
// its usage count, so a database of the user's, "setupdll.mdb" in the program's folder, says which
// registry records belong to the DLL. They are added to an analysis as if the scans had seen them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"
#include "platform/dao/Workspace.h"
#include "platform/machine/clsMachine.h"
#include "snapshot/clsStatements.h"

namespace sandrel {

class clsSetupRecords {
 public:
  /// All must outlive the object.
  clsSetupRecords(clsShell& shell, clsSettings& settings, const clsHome& home, clsMachine& machine);

  /// Notes the usage counts of the listed DLLs, before (`After` false) or after an installation.
  /// Raises 3024 when there is no "setupdll.mdb", and 3219 while the registry of another computer
  /// is scanned.
  void ProcessSetupFiles(bool After);

  /// Adds the records of the DLLs whose count moved between 1 and 2 to the open analysis: those
  /// that came to its new, those that went to its deleted values. Errors are reported, but for the
  /// 3219 of `ProcessSetupFiles`, which is raised.
  void UpdateSetupTables();

  /// Replaces $(windir) and $(winsysdir), in any case, by the machine's folders; what another
  /// macro's brackets hold stays as text. Blanks behind a macro and at the text's end go.
  std::string ExpandSetupMacros(std::string& Text);

  /// True when the version `a` is the newer one; parts between dots compare as numbers.
  static bool IsNewerVersion(std::string_view a, std::string_view b);

  /// Host path of the records' database.
  std::string DatabasePath() const;

 private:
  void NeedLocal();
  void ApplyTable(clsStatements& run, dao::Database& analysis, dao::Database& setup,
                  const std::string& table);
  void ApplyRecord(dao::Database& analysis, dao::Recordset& target, dao::Recordset& record);

  clsShell& m_shell;
  clsSettings& m_settings;
  const clsHome& m_home;
  clsMachine& m_machine;
};

}  // namespace sandrel
