// The snapshot commands, run from the main window: what is locked and shown meanwhile, how they
// are stopped, and what an error leaves behind.
#include <QLabel>
#include <deque>
#include <filesystem>
#include <set>

#include "shell/frmSandrel.h"
#include "store/clsSnapshotRecord.h"
#include "support/Rows.h"
#include "window/support/WindowFixture.h"

namespace sandrel::test {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* Cancel = "Sandrel Manager|Cancel Scanning";

class frmSandrelSnapshotsTest : public WindowFixture {
 protected:
  /// Starts and answers the question for a Before snapshot.
  void StartWith(const char* answer) {
    m_boxes.Buttons = {answer};
    Start();
    m_boxes.Log.clear();
  }
  /// Runs the After command into `path`, with these answers.
  void After(const std::string& path, std::deque<std::string> answers) {
    m_boxes.Log.clear();
    m_boxes.Files = {path};
    m_boxes.Buttons = std::move(answers);
    PressButton("AfterSnapshot");
    EXPECT_EQ(m_boxes.Buttons.size(), 0) << "a question was not asked";
  }
  std::string Title() { return m_form->windowTitle().toStdString(); }
  std::string TimeText() { return Find<QLabel>("txtLastBeforeSnapshot")->text().toStdString(); }
  bool HasBefore() const { return clsFileWorks::FileExists(Working()); }
};

TEST_F(frmSandrelSnapshotsTest, BeforeShowsItsProgressAndLocksTheCommands) {
  StartWith("No");
  EXPECT_EQ(Commands(), "Before Menus");
  EXPECT_EQ(TimeText(), "Last 'Before' Snapshot: None");
  std::set<std::string> percentages, states;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    percentages.insert(Find<QLabel>("stbrStatus.Progress")->text().toStdString());
    states.insert(Commands() + (QGuiApplication::overrideCursor() != nullptr ? " busy" : ""));
  });
  look.start(0);
  m_watch.Pause = 16;
  PressButton("BeforeSnapshot");
  look.stop();
  EXPECT_EQ(m_watch.Statuses,
            (Texts{"Scanning Folder C:...", "Scanning Registry...",
                   "Scanning Registry - HKEY_CURRENT_CONFIG...",
                   "Scanning Registry - HKEY_CURRENT_USER...",
                   "Scanning Registry - HKEY_LOCAL_MACHINE...", "Scanning Registry - HKEY_USERS...",
                   "Before Snapshot Complete"}));
  EXPECT_EQ(Controls().stbrStatus.Progress(), "");
  EXPECT_EQ(percentages.count("100%"), 1);
  EXPECT_GE(percentages.size(), 5U);
  EXPECT_EQ(states, std::set<std::string>{"Stop busy"});
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(Commands(), "Before After Menus");
  EXPECT_EQ(TimeText(),
            "Last 'Before' Snapshot: " + clsSnapshotRecord::Read(Working()).Time("Before"));
}

TEST_F(frmSandrelSnapshotsTest, ClosingDuringAScanEndsItOrIsRefused) {
  StartWith("No");
  for (const bool ends : {false, true}) {
    m_boxes.Log.clear();
    m_boxes.Buttons = {ends ? "Yes" : "No"};
    bool waited = false;
    m_watch.During("Scanning Folder", [&] {
      m_form->close();
      waited = m_form->isVisible() && !m_form->IsUnloaded();
    });
    std::filesystem::remove(Working());
    EXPECT_TRUE(Choose("mnuSnapShotBefore"));
    EXPECT_EQ(m_boxes.Log, Texts{Cancel});
    EXPECT_TRUE(waited);
    EXPECT_EQ(Status(), ends ? "Scan Stopped" : "Before Snapshot Complete");
    EXPECT_EQ(m_form->IsUnloaded(), ends);
    EXPECT_EQ(m_form->isVisible(), !ends);
    EXPECT_EQ(HasBefore(), !ends);
  }
  EXPECT_NE(m_settings.GetSetting("Main Form", "SplitPos"), "");
}

TEST_F(frmSandrelSnapshotsTest, AfterOpensItsAnalysisAndReplaceBeginsAnew) {
  StartWith("Yes");
  m_sample.WriteFile("C:\\Program Files\\Tool\\new.txt", "new");
  After("", {});
  EXPECT_EQ(m_boxes.Log, Texts{"Create Analysis|Sandrel.mdb"});
  EXPECT_EQ(Commands(), "Before After Menus");
  After(m_temp.Of("x"), {});  // the dialog adds the extension
  EXPECT_EQ(Status(), "Analysis Created");
  EXPECT_EQ(Title(), "x.mdb - Sandrel");
  EXPECT_EQ(m_settings.GetSetting("Recent Files", "RecentFile1"), m_temp.Of("x.mdb"));
  EXPECT_EQ(List(page::NewFiles).RowCount(), 1U);
  EXPECT_EQ(Commands(), "Before After Replace Menus");

  clsSnapshotRecord record = clsSnapshotRecord::Read(Working());
  record.Set("After", "1/2/2003 4:05:06 AM", record.Machine("After"));
  record.Write(Working());
  PressButton("ReplaceBeforeSnapshot");
  EXPECT_EQ(Commands(), "Before After Menus");
  EXPECT_EQ(TimeText(), "Last 'Before' Snapshot: 1/2/2003 4:05:06 AM");
  After(m_temp.Of("y.mdb"), {});
  EXPECT_EQ(Title(), "y.mdb - Sandrel");
  EXPECT_EQ(List(page::NewFiles).RowCount(), 0U);
}

TEST_F(frmSandrelSnapshotsTest, AStoppedAnalysisLeavesTheFileThatItWasToReplace) {
  const std::string path = m_temp.Of("x.mdb");
  StartWith("Yes");
  After(path, {});
  m_watch.During("Creating Analysis", [this] { PressButton("StopScanning"); });
  After(path, {"Yes", "Yes", "Yes"});
  EXPECT_EQ(m_boxes.Log.back(), Cancel);
  EXPECT_EQ(Status(), "Scan Stopped");
  EXPECT_TRUE(IsWhole(path));
  EXPECT_EQ(Tree().Count(), 0U);
  EXPECT_EQ(Title(), "Untitled - Sandrel");
  EXPECT_EQ(Commands(), "Before After Replace Menus");
}

TEST_F(frmSandrelSnapshotsTest, AnErrorThatAbortsEndsTheProgram) {
  StartWith("Yes");
  clsFileWorks::ReplaceWhole(m_sample.Folder() + "/system.reg", "garbage");
  const std::string kept = clsFileWorks::ReadWhole(Working());
  m_boxes.Buttons = {"Yes", "Abort"};
  PressButton("BeforeSnapshot");
  ASSERT_EQ(m_boxes.Log.size(), 2U);
  EXPECT_TRUE(m_boxes.Log[1].starts_with("Sandrel Error Message|The following error has occured"));
  EXPECT_TRUE(m_boxes.Log[1].ends_with("\n\nMethod: frmSandrel.mnuSnapShotBefore"));
  EXPECT_TRUE(m_form->IsUnloaded());
  EXPECT_FALSE(m_form->isVisible());
  EXPECT_EQ(clsFileWorks::ReadWhole(Working()), kept) << "nothing was changed yet";
}

TEST_F(frmSandrelSnapshotsTest, WithoutAMachineTheCommandTellsWhatIsMissing) {
  const SampleMachine other;
  std::filesystem::remove_all(m_sample.Folder() + "/drive_c");
  StartWith("No");
  m_boxes.Buttons = {"Ignore"};
  PressButton("BeforeSnapshot");
  EXPECT_TRUE(m_boxes.Has("There is no Windows machine in " + m_sample.Folder()) &&
              m_boxes.Has("Machine... in the Settings menu"));
  EXPECT_FALSE(HasBefore());
  m_boxes.Files = {other.Folder()};
  EXPECT_TRUE(Choose("mnuSettingsMachine"));
  EXPECT_EQ(Status(), "Looking at " + other.Folder() + " (Wine prefix)");
  PressButton("BeforeSnapshot");
  EXPECT_EQ(Status(), "Before Snapshot Complete");
}

}  // namespace
}  // namespace sandrel::test
