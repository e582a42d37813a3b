#include "window/support/WindowFixture.h"

#include "snapshot/clsAnalysis.h"
#include "snapshot/clsSnapshots.h"
#include "support/ShellRecorder.h"

namespace sandrel::test {

std::string WindowFixture::MakeAnalysis(const std::string& name,
                                        const std::function<void()>& install) {
  const std::string path = m_temp.Of(name);
  ShellRecorder shell;
  const auto machine = clsMachine::Open(m_sample.Folder());
  clsSnapshots snapshots(shell, m_settings, m_home, machine);
  clsAnalysis analysis(shell, m_settings, m_home, machine);
  snapshots.mnuSnapShotBefore_Click();
  install();
  machine->CloseRegistry();
  analysis.AfterInto(snapshots, path);
  EXPECT_TRUE(shell.Has("Analysis Created")) << shell.Last();
  return path;
}

}  // namespace sandrel::test
