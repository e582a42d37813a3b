// The About box.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "common/clsShell.h"

class QLabel;
class QPushButton;

namespace sandrel {

class clsMachine;

class frmAbout final : public QDialog {
 public:
  /// `shell` outlives it; `openMachine` gives the machine whose tool the System Info button starts,
  /// and may raise. `version` is "major.minor.revision".
  frmAbout(clsShell& shell, std::function<std::shared_ptr<clsMachine>()> openMachine,
           const QString& version, QWidget* parent);

 private:
  QLabel* AddLabel(const char* name, const QString& text);
  void cmdSysinfo_Click();

  clsShell& m_shell;
  std::function<std::shared_ptr<clsMachine>()> m_openMachine;

  QLabel* imgIcon;
  QLabel* lblProgramNameAndVersion;
  QPushButton* cmdSysinfo;
};

}  // namespace sandrel
