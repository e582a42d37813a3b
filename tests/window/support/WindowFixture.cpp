#include "window/support/WindowFixture.h"

#include "snapshot/clsAnalysis.h"
#include "snapshot/clsSnapshots.h"
#include "support/ShellRecorder.h"

namespace sandrel::test {

// The end of a window tells the event loop to end. One that has ended lets the boxes of the next
// window come up again.
void WindowFixture::Stop() {
  if (m_form == nullptr) return;
  if (!m_form->IsUnloaded()) m_form->close();
  m_form.reset();
  QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
  QApplication::exec();
}

std::string WindowFixture::Commands() {
  struct Command {
    const char *Text, *Item, *Button;
  };
  std::string able;
  const auto add = [&able](const char* text, bool item, bool button) {
    if (!item && !button) return;
    able += (able.empty() ? "" : " ") + std::string(text) + (item == button ? "" : "?");
  };
  for (const auto& [text, item, button] :
       {Command{"Before", "mnuSnapShotBefore", "BeforeSnapshot"},
        Command{"After", "mnuSnapShotAfter", "AfterSnapshot"},
        Command{"Replace", "mnuSnapShotRollUp", "ReplaceBeforeSnapshot"},
        Command{"Stop", "mnuSnapShotCancelOperation", "StopScanning"}}) {
    add(text, IsEnabled(item), Find<QToolButton>("tlbarMain." + std::string(button))->isEnabled());
  }
  int locked = Find<QToolButton>("tlbarMain.Open")->isEnabled() ? 0 : 1;
  for (const char* menu : {"mnuFile", "mnuEdit", "mnuColumns", "mnuView"}) {
    if (!IsEnabled(menu)) ++locked;
  }
  add("Menus", locked < 5, locked == 0);
  return able;
}

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
