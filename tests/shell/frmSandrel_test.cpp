// How the main window comes up, goes down and goes to the tray.
#include "shell/frmSandrel.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <filesystem>
#include <utility>

#include "platform/qt/clsToolbarWidget.h"
#include "platform/qt/modTwips.h"
#include "window/support/WindowFixture.h"

namespace sandrel::test {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* Prompt =
    "Sandrel Manager|A 'Before' Snapshot of your drive(s) and registry was not found!\n\nWould you "
    "like to create one now?";

QWidget* Splash() {
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (QWidget* const window : windows) {
    if (window->objectName() == "frmSplash" && window->isVisible()) return window;
  }
  return nullptr;
}

class frmSandrelTest : public WindowFixture {
 protected:
  /// Starts without an analysis and answers the question for a Before snapshot with No.
  void StartUntitled(StartOptions options = {}) {
    m_boxes.Buttons = {"No"};
    Start(std::move(options));
  }
  std::string Placed(const char* key) { return m_settings.GetSetting("Main Form", key); }
  void Place(const char* key, int number) {
    m_settings.SaveSetting("Main Form", key, std::to_string(number));
  }
};

TEST_F(frmSandrelTest, TheLastAnalysisAndShiftDecideWhatAStartShows) {
  MakeAnalysis("kept.mdb", [this] { m_sample.WriteFile("C:\\new.txt", "new"); });
  std::filesystem::remove(Working());
  struct Case {
    const char* Recent;
    bool Shift, Opens, Prompts;
  };
  for (const auto& [recent, shift, opens, prompts] : {Case{"", false, false, true},
                                                      {"", true, false, true},
                                                      {"gone.mdb", false, false, true},
                                                      {"gone.mdb", true, false, false},
                                                      {"kept.mdb", true, false, false},
                                                      {"kept.mdb", false, true, false}}) {
    SCOPED_TRACE(std::string(recent) + (shift ? " with Shift" : ""));
    m_settings.SaveSetting("Recent Files", "RecentFile1", *recent ? m_temp.Of(recent) : "");
    OnMade = [shift = shift] {
      if (shift) QTimer::singleShot(0, [] { QTest::keyClick(Splash(), Qt::Key_Shift); });
    };
    m_boxes.Log.clear();
    StartOptions options;
    options.Command = "/unknown command";
    StartUntitled(options);
    EXPECT_EQ(m_boxes.Log, prompts ? Texts{Prompt} : Texts{});
    EXPECT_EQ(m_form->windowTitle().toStdString(),
              opens ? "kept.mdb - Sandrel" : "Untitled - Sandrel");
    EXPECT_EQ(Tree().Find("Root") != nullptr, opens);
    EXPECT_EQ(Tree().Count() == 0, !opens);
    EXPECT_EQ(Commands(), "Before Menus");
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_EQ(Splash() != nullptr, !prompts);
    EXPECT_EQ(m_form->State.AnalysisPath, opens ? m_temp.Of(recent) : "");
    Stop();
  }
}

TEST_F(frmSandrelTest, YesAtTheStartTakesTheBeforeSnapshot) {
  for (const bool again : {false, true}) {  // the snapshot of the last session counts
    m_boxes.Log.clear();
    m_boxes.Buttons = {"Yes"};
    Start();
    EXPECT_EQ(m_boxes.Log, again ? Texts{} : Texts{Prompt});
    EXPECT_EQ(Commands(), "Before After Menus");
    Stop();
  }
}

TEST_F(frmSandrelTest, ASecondInstanceHandsOverAndSavesNothing) {
  StartOptions options;
  options.PrevInstance = true;
  Start(options);
  EXPECT_EQ(m_windows.Log, (Texts{"ShowWindow 0 9", "OpenIcon", "SetForegroundWindow"}));
  EXPECT_TRUE(m_form->IsUnloaded());
  EXPECT_FALSE(m_form->isVisible());
  Stop();
  EXPECT_EQ(m_boxes.Log, Texts{});

  options.File = "/analyses/setup.mdb";
  m_boxes.Buttons = {"OK"};
  Start(options);
  EXPECT_TRUE(m_form->IsUnloaded());
  Stop();
  EXPECT_EQ(m_boxes.Log, (Texts{"Sandrel Manager|Sandrel is already running. Its File menu opens "
                                "this file:\n\n/analyses/setup.mdb"}));
  EXPECT_FALSE(clsFileWorks::FileExists(m_settings.Path()));
}

TEST_F(frmSandrelTest, AGivenFileIsOpenedInsteadOfTheLastOne) {
  MakeAnalysis("last.mdb", [this] { m_sample.WriteFile("C:\\new.txt", "new"); });
  std::filesystem::copy_file(m_temp.Of("last.mdb"), m_temp.Of("given.mdb"));
  std::filesystem::remove(Working());
  for (const bool there : {true, false}) {
    m_settings.SaveSetting("Recent Files", "RecentFile1", m_temp.Of("last.mdb"));
    m_boxes.Buttons = {"OK"};
    StartOptions options;
    options.File = m_temp.Of(there ? "given.mdb" : "gone.mdb");
    Start(options);
    EXPECT_EQ(m_form->windowTitle(), there ? "given.mdb - Sandrel" : "Untitled - Sandrel");
    EXPECT_EQ(m_boxes.Log.size(), there ? 0U : 1U);
    EXPECT_NE(m_boxes.Has("gone.mdb not found. An analysis file must"), there);
    Stop();
  }
}

TEST_F(frmSandrelTest, TheWindowStandsWhereItStood) {
  StartUntitled();
  m_form->setGeometry(40, 50, 600, 420);
  Controls().treeView.Width = 3000;
  const QPoint place = m_form->pos();
  Stop();
  const auto placed = [this] { return Placed("WindowState") + " " + Placed("Width"); };
  EXPECT_EQ(placed(), "0 9000");
  StartUntitled();
  EXPECT_EQ(m_form->pos(), place);
  EXPECT_EQ(m_form->size(), QSize(600, 420));
  EXPECT_EQ(Find("treeView")->width(), 200);
  m_form->showMaximized();
  Stop();
  EXPECT_EQ(placed(), "2 9000");

  Place("WindowState", 1);
  StartUntitled();
  EXPECT_TRUE(m_form->isMinimized());
  Stop();
  EXPECT_EQ(placed(), "1 9000");

  Place("WindowState", 0);
  for (const char* key : {"Left", "Width"}) {  // the screen is gone, or too small by now
    Place(key, 90000);
    StartUntitled();
    const QRect screen = QApplication::primaryScreen()->geometry();
    EXPECT_TRUE(screen.contains(m_form->geometry().center())) << key;
    Stop();
    Place("Left", 600);
  }
}

TEST_F(frmSandrelTest, TreeAndListsTakeTheRoomOfHiddenBars) {
  StartUntitled();
  const int bar = qt::ToPixels(clsToolbarWidget::Height);
  const int status = qt::ToPixels(StatusBar::Height);
  const auto expectRoom = [&](int above, int below) {
    const int height = m_form->centralWidget()->height() - above - below;
    for (const char* const pane : {"treeView", "listView(0)", "listView(14)"}) {
      EXPECT_EQ(Find(pane)->y(), above) << pane;
      EXPECT_EQ(Find(pane)->height(), height) << pane;
    }
    EXPECT_EQ(Find("tlbarMain")->isVisible(), above > 0);
    EXPECT_EQ(Find("txtLastBeforeSnapshot")->isVisible(), above > 0);
    EXPECT_EQ(Find("stbrStatus")->isVisible(), below > 0);
    EXPECT_EQ(Find<QAction>("mnuViewToolbar")->isChecked(), above > 0);
    EXPECT_EQ(Find<QAction>("mnuViewStatusbar")->isChecked(), below > 0);
  };
  expectRoom(bar, status);
  EXPECT_TRUE(Choose("mnuViewToolbar") && Choose("mnuViewStatusbar"));
  expectRoom(0, 0);
  EXPECT_TRUE(Choose("mnuViewToolbar"));
  EXPECT_EQ(m_settings.GetSetting("Enabled", "Toolbar"), "True");
  EXPECT_EQ(m_settings.GetSetting("Enabled", "Statusbar"), "False");
  Stop();
  StartUntitled();
  expectRoom(bar, 0);
}

class frmSandrelTrayTest : public frmSandrelTest {
 protected:
  frmSandrelTrayTest() {
    OnMade = [this] { Controls().SysTray.LookForTray = [] { return true; }; };
    m_settings.SaveSetting("Enabled", "Systray", "True");
  }
  void Gesture(QSystemTrayIcon::ActivationReason reason) {
    auto* const icon = m_form->findChild<QSystemTrayIcon*>();
    ASSERT_NE(icon, nullptr);
    Q_EMIT icon->activated(reason);
  }
  bool InTray() { return Controls().SysTray.InTray(); }
  /// Opens the icon's menu and clicks on one of its items.
  void ClickPopup(const char* item) {
    Gesture(QSystemTrayIcon::Context);
    auto* const popup = Find<QMenu>("mnuSysTrayPopup");
    ASSERT_TRUE(QTest::qWaitFor([popup] { return popup->isVisible(); }));
    auto* const action = popup->findChild<QAction*>(item);
    ASSERT_NE(action, nullptr);
    QTest::mouseClick(popup, Qt::LeftButton, {}, popup->actionGeometry(action).center());
  }
};

TEST_F(frmSandrelTrayTest, TheWindowHidesInTheTrayAndComesBack) {
  StartUntitled();
  EXPECT_FALSE(m_form->isVisible());
  EXPECT_TRUE(InTray());
  Gesture(QSystemTrayIcon::DoubleClick);
  EXPECT_TRUE(m_form->isVisible());
  m_form->close();
  EXPECT_FALSE(m_form->isVisible() || m_form->IsUnloaded());
  EXPECT_EQ(Placed("SplitPos"), "") << "nothing is saved";

  auto* const popup = Find<QMenu>("mnuSysTrayPopup");
  QElapsedTimer since;
  since.start();
  Gesture(QSystemTrayIcon::Context);
  EXPECT_FALSE(popup->isVisible());
  EXPECT_TRUE(QTest::qWaitFor([popup] { return popup->isVisible(); }));
  EXPECT_GE(since.elapsed(), 90);
  popup->close();

  m_form->showMinimized();
  ClickPopup("mnuSysTrayPopupRestore");
  EXPECT_TRUE(m_form->isVisible() && !m_form->isMinimized());
  for (const bool inTray : {false, true}) {
    EXPECT_TRUE(Choose("mnuSettingsSystray"));
    EXPECT_EQ(InTray(), inTray);
    EXPECT_EQ(m_settings.GetSetting("Enabled", "Systray"), inTray ? "True" : "False");
  }
  ClickPopup("mnuSysTrayPopupExit");
  EXPECT_TRUE(m_form->IsUnloaded());
  EXPECT_FALSE(InTray());
  EXPECT_NE(Placed("SplitPos"), "");
}

TEST_F(frmSandrelTrayTest, WithoutATrayTheWindowShows) {
  OnMade = [this] { Controls().SysTray.LookForTray = [] { return false; }; };
  StartUntitled();
  EXPECT_TRUE(m_form->isVisible());
  EXPECT_FALSE(InTray());
  EXPECT_FALSE(IsEnabled("mnuSettingsSystray"));
  m_form->close();
  EXPECT_TRUE(m_form->IsUnloaded());
}

}  // namespace
}  // namespace sandrel::test
