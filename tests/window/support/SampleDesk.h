// A realistic machine, its snapshots and settings in a temporary folder, for programs that bring
// the window up over them.
#pragma once

#include <QProcess>
#include <stdexcept>
#include <string>

#include "Places.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"
#include "platform/process/clsTopWindows.h"
#include "shell/frmSandrel.h"
#include "snapshot/clsAnalysis.h"
#include "snapshot/clsSnapshots.h"
#include "support/ShellRecorder.h"
#include "support/TempFolder.h"

namespace sandrel::test {

class SampleDesk {
 public:
  SampleDesk() { RunScript("make-sample-machine"); }

  TempFolder Temp;
  clsSettings Settings{Temp.Of("settings.ini")};
  clsHome Home = clsHome::Find(Temp.Of("home"));
  clsTopWindows Windows;

  std::string MachineFolder() const { return Temp.Of("machine"); }

  /// Takes both snapshots round the sample installation, which can be run once, and makes the
  /// analysis. Its host path.
  std::string MakeAnalysis(const std::string& name) {
    const auto machine = clsMachine::Open(MachineFolder());
    ShellRecorder shell;
    clsSnapshots snapshots(shell, Settings, Home, machine);
    clsAnalysis analysis(shell, Settings, Home, machine);
    Settings.SaveSetting("Enabled", "VersionInfo", "1");
    snapshots.mnuSnapShotBefore_Click();
    RunScript("sample-installation");
    machine->CloseRegistry();
    analysis.AfterInto(snapshots, Temp.Of(name));
    if (!shell.Has("Analysis Created")) throw std::runtime_error("no analysis: " + shell.Last());
    return Temp.Of(name);
  }

  /// A window that isn't shown yet, in place of the one before. The desk outlives it.
  std::unique_ptr<frmSandrel> MakeWindow() {
    StartOptions options;
    options.Machine = MachineFolder();
    options.HelpFile = SANDREL_HELP_FILE;
    return std::make_unique<frmSandrel>(Settings, Home, Windows, options);
  }

 private:
  void RunScript(const char* name) const {
    const QString script = QString(SANDREL_SCRIPTS "/") + name;
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start("python3", {script, QString::fromStdString(MachineFolder())});
    if (!process.waitForFinished() || process.exitCode() != 0) {
      throw std::runtime_error(std::string(name) + " failed");
    }
  }
};

}  // namespace sandrel::test
