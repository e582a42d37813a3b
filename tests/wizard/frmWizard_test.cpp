#include "wizard/frmWizard.h"

#include <sys/stat.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "Places.h"
#include "platform/process/clsRunOnce.h"
#include "support/Rows.h"
#include "support/RunAtLogon.h"
#include "support/Variables.h"
#include "window/support/WindowFixture.h"
#include "wizard/clsControlsWorks.h"

namespace sandrel::test {
namespace {

class Wizard : public WindowFixture {
 protected:
  Wizard() {
    std::filesystem::create_directory(m_temp.Of("home"));
    clsFileWorks::ReplaceWhole(Working(), "");  // no question about a Before snapshot at the start
    m_options.Program = m_temp.Of("program");
    std::filesystem::create_symlink(SANDREL_ASYNC_STARTUP, m_temp.Of("AsyncStartup"));
    m_boxes.OnBox = [this](QWidget&) { m_shownAtBox.push_back(IsShown()); };
  }

  void StartWizard() {
    Start(m_options);
    EXPECT_EQ(Form(), nullptr);
    clsFileWorks::DeleteFile(Working());
    m_form->UpdateCommandState();
    ASSERT_TRUE(Choose("mnuSnapShotWizard"));
  }
  /// Writes a program of the host and gives its command line.
  std::string Script(const std::string& name, const std::string& text) {
    const std::string path = m_temp.Of(name);
    clsFileWorks::ReplaceWhole(path, "#!/bin/sh\n" + text + "\n");
    chmod(path.c_str(), 0755);
    return '"' + path + '"';
  }
  /// An installer that adds a file, and keeps what the next logon would run while it is at work.
  std::string Installer(const std::string& rest = "") {
    return Script("set up", "mkdir '" + m_sample.HostPath("C:\\Acme") + "'; echo acme > '" +
                                m_sample.HostPath("C:\\Acme\\acme.txt") + "'; cp '" + Entry() +
                                "' '" + m_temp.Of("kept") + "'; " + rest);
  }
  void ExpectAcme(const std::string& analysis) {
    EXPECT_EQ(Cell(analysis, "SELECT PathName || FileName FROM tblNewFiles WHERE FileName <> ''"),
              "C:\\Acme\\acme.txt");
  }
  std::string Entry() const {
    return clsRunOnce().PathOf(clsRunOnce::WizardEntry(m_temp.Of("home")));
  }

  frmWizard* Form() { return m_form->findChild<frmWizard*>(); }
  bool IsShown() { return Form() != nullptr && Form()->isVisible(); }
  void Press(const char* button) { QTest::mouseClick(Find<QPushButton>(button), Qt::LeftButton); }
  void Next(int times = 1) {
    for (int i = 0; i < times; ++i) Press("cmdNext");
  }
  void Option(const std::string& name) {
    auto* const option = Find<QRadioButton>(name);
    QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(8, option->height() / 2));
    EXPECT_TRUE(option->isChecked()) << name;
  }
  void Type(const char* edit, const std::string& text) {
    auto* const line = Find<QLineEdit>(edit);
    line->setFocus();
    line->selectAll();
    QTest::keyClicks(line, QString::fromStdString(text));
  }
  int Page() {
    int shown = -1;
    for (int i = 0; i < clsWizardFlow::PageCount; ++i) {
      if (Find(clsMainControls::Element("picPage", i))->isVisible()) {
        EXPECT_EQ(shown, -1);
        shown = i;
      }
    }
    return shown;
  }
  /// What stands on the page on show, and whether every label has the room that it needs.
  void ExpectRoom() {
    for (const QLabel* const label : Form()->findChildren<QLabel*>()) {
      if (!label->isVisible() || label->text().isEmpty()) continue;
      const int needed =
          label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
      EXPECT_LE(needed, label->height()) << label->text().toStdString();
      EXPECT_TRUE(label->wordWrap() || label->sizeHint().width() <= label->width());
    }
  }
  Variables m_config{{"XDG_CONFIG_HOME", m_temp.Of("config")}};
  StartOptions m_options;
  std::vector<bool> m_shownAtBox;
};

TEST_F(Wizard, HasRoomForItsTextsAndGoesByKeys) {
  StartWizard();
  EXPECT_EQ(Form()->windowTitle(), "Snapshot / Analysis Wizard");
  for (std::int16_t page = 0; page < clsWizardFlow::PageCount; ++page) {
    Form()->DisplayPage(page, true, false);
    EXPECT_EQ(Page(), page);
    ExpectRoom();
  }
  QTest::keyClick(Form(), Qt::Key_Escape);
  EXPECT_TRUE(IsShown()) << "the last page has only its Finish";
  Press("cmdFinish");
  EXPECT_FALSE(IsShown() || clsControlsWorks::IsLoaded(Form()));
  ASSERT_TRUE(Choose("mnuSnapShotWizard"));
  for (const auto& [focus, page] :
       {std::pair("cmdNext", 1), {"optScanSettings(0)", 2}, {"cmdPrevious", 1}}) {
    Find(focus)->setFocus();
    QTest::keyClick(Find(focus), Qt::Key_Return);
    EXPECT_EQ(Page(), page);
  }
  QTest::keyClick(Form(), Qt::Key_Escape);
  EXPECT_FALSE(IsShown());
}

TEST_F(Wizard, LeadsToARightAnalysis) {
  StartWizard();
  Next(2);
  EXPECT_FALSE(Find<QRadioButton>("optBeforeSS(2)")->isEnabled());
  Next();
  EXPECT_EQ(m_shownAtBox, std::vector<bool>{true});
  EXPECT_EQ(m_form->Snapshots().GetSnapshotLevel(), SnapshotLevel::Before);
  EXPECT_EQ(Page(), 3);
  EXPECT_FALSE(Find<QPushButton>("cmdNext")->isEnabled());
  Type("txtRun", Installer());
  Press("cmdPrevious");
  EXPECT_TRUE(Find<QLabel>("lblBeforeSnapshotAge")->text().startsWith("Existing 'Before"));
  Next(2);
  EXPECT_EQ(Page(), 4);
  EXPECT_TRUE(m_form->isVisible() && IsShown());
  EXPECT_TRUE(clsFileWorks::FileExists(m_temp.Of("kept")));
  EXPECT_FALSE(clsFileWorks::FileExists(Entry()));
  Next();
  Type("txtViewName", m_temp.Of("none/x.mdb"));
  Next();
  EXPECT_TRUE(m_boxes.Has("there is no folder"));
  Type("txtViewName", "acme");
  Next();
  EXPECT_EQ(Page(), 6);
  ExpectAcme(m_temp.Of("home/acme.mdb"));
  EXPECT_EQ(m_form->State.AnalysisPath, m_temp.Of("home/acme.mdb"));
}

// The real program is killed while the installer runs; the next logon starts another one.
TEST_F(Wizard, ComesBackAfterARestart) {
  clsFileWorks::DeleteFile(Working());
  const std::string path = m_temp.Of("x.mdb");
  const Variables lead{{"SANDREL_MACHINE", m_sample.Folder()},
                       {"SANDREL_HOME", m_temp.Of("home")},
                       {"SANDREL_SETTINGS", m_temp.Of("settings.ini")},
                       {"QT_PLUGIN_PATH", SANDREL_PLUGINS},
                       {"QT_QPA_GENERIC_PLUGINS", "sandrel_driver"},
                       {"SANDREL_STEPS",
                        "No\nmnuSnapShotWizard\ncmdNext\ncmdNext\ncmdNext\nOK\n"
                        "txtRun=" +
                            Installer("kill -9 $PPID") + "\ncmdNext"}};
  const int status = std::system("exec '" SANDREL_PROGRAM "'");
  ASSERT_TRUE(WIFSIGNALED(status)) << status;
  const Variables goOn{{"SANDREL_MACHINE", {}},
                       {"SANDREL_HOME", {}},
                       {"SANDREL_STEPS", "picPage(4)\ncmdNext\ntxtViewName=" + path +
                                             "\ncmdNext\nOK\ncmdFinish\nmnuFileExit"}};
  EXPECT_EQ(RunAtLogon(Entry()), 0);
  EXPECT_FALSE(clsFileWorks::FileExists(Entry()));
  ExpectAcme(path);
}

TEST_F(Wizard, WaitsHiddenWhileMessagesPass) {
  StartWizard();
  std::int16_t installed = 4;
  Form()->DisplayPage(installed, true, false);
  Option("optInstComplete(1)");
  Type("txtWait", "-0.x");
  bool stored = false;
  std::string commands;
  QTimer::singleShot(0, [&] {
    stored = clsFileWorks::FileExists(Entry()) && !IsShown() && m_form->isMinimized();
    commands = Commands();
  });
  Next();
  EXPECT_TRUE(stored);
  EXPECT_EQ(commands, "");
  EXPECT_EQ(Page(), 4);
  EXPECT_FALSE(clsFileWorks::FileExists(Entry()));
}

TEST_F(Wizard, EndOfTheProgramEndsTheWaitAndKeepsTheEntry) {
  m_options.Command = "/Wizard page4";  // not the one that brings it
  StartWizard();
  Next(3);
  m_sample.WriteProgram("C:\\setup.exe", 0, 0);
  {
    const Variables noWine{{"PATH", m_temp.Of("none")}};
    Type("txtRun", "C:\\setup.exe");
    Next();
    EXPECT_TRUE(m_boxes.Has("Wine isn't installed"));
  }
  Type("txtRun", Script("long", "sleep 20"));
  QTimer::singleShot(100, [this] { m_form->Unload(); });
  QElapsedTimer timer;
  timer.start();
  Next();
  EXPECT_LT(timer.elapsed(), 5000);
  EXPECT_TRUE(m_form->IsUnloaded());
  EXPECT_TRUE(clsFileWorks::FileExists(Entry()));
}

}  // namespace
}  // namespace sandrel::test
