// The Help menu: both commands of the viewer, and the About box.
#include "shell/frmHelp.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTreeWidget>

#include "Places.h"
#include "platform/qt/clsMarkdownPage.h"
#include "window/support/WindowFixture.h"

namespace sandrel::test {
namespace {

class frmHelpTest : public WindowFixture {
 protected:
  void StartWith(const std::string& helpFile) {
    m_boxes.Buttons = {"No"};
    StartOptions options;
    options.HelpFile = helpFile;
    Start(options);
    m_boxes.Log.clear();
  }
  template <class Widget>
  Widget& In(const char* name) {
    return *m_form->Help()->findChild<Widget*>(name);
  }
  clsMarkdownPage& Page() { return In<clsMarkdownPage>("page"); }
  std::string Source() { return Page().source().toString().toStdString(); }
  std::string Text() { return Page().toPlainText().toStdString(); }
  std::string Tab() {
    auto& tabs = In<QTabWidget>("tabStrip");
    return tabs.tabText(tabs.currentIndex()).toStdString();
  }
};

TEST_F(frmHelpTest, BothCommandsOpenOneViewer) {
  StartWith(SANDREL_HELP_FILE);
  ASSERT_TRUE(Choose("mnuHelpContents"));
  frmHelp* const viewer = m_form->Help();
  EXPECT_TRUE(viewer->isVisible());
  EXPECT_EQ(Tab(), "&Contents");
  EXPECT_EQ(Source(), "text:/01-introduction.md");
  EXPECT_EQ(Page().verticalScrollBar()->value(), 0);

  ASSERT_TRUE(Choose("mnuHelpIndex"));
  EXPECT_EQ(m_form->Help(), viewer);
  EXPECT_EQ(Tab(), "&Index");
  auto& box = In<QLineEdit>("txtIndex");
  auto& index = In<QTreeWidget>("treeIndex");
  QTest::keyClicks(&box, "wildc");
  EXPECT_EQ(index.currentItem()->text(0), "wildcards");
  QTest::keyClick(&box, Qt::Key_Return);
  EXPECT_EQ(Source().find("text:/05-configuration.md#"), 0u) << Source();
  EXPECT_GT(Page().verticalScrollBar()->value(), 0) << "the place within the chapter";

  auto& words = In<QLineEdit>("txtSearch");
  QTest::keyClicks(&words, "NTUSER.DAT");
  QTest::keyClick(&words, Qt::Key_Return);
  EXPECT_NE(Text().find("NTUSER.DAT"), std::string::npos) << Source();
  EXPECT_FALSE(Page().extraSelections().isEmpty());
  words.setText("no such thing anywhere");
  EXPECT_EQ(In<QTreeWidget>("treeSearch").topLevelItem(0)->text(0), "Nothing was found.");

  Page().backward();
  EXPECT_EQ(Source().find("text:/05-configuration.md#"), 0u) << Source();
  ASSERT_TRUE(QTest::qWaitForWindowActive(viewer));
  const int zoom = Page().Zoom();
  QTest::keyClick(&Page(), Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_GT(Page().Zoom(), zoom);
  QTest::keyClick(&box, Qt::Key_Escape);
  EXPECT_FALSE(viewer->isVisible());
  Choose("mnuHelpContents");
  EXPECT_TRUE(viewer->isVisible());
  m_form->close();
  EXPECT_FALSE(viewer->isVisible()) << "the help goes with the program";
}

TEST_F(frmHelpTest, TellsOfTheMachine) {
  StartWith(SANDREL_HELP_FILE);
  Choose("mnuHelpContents");
  auto& contents = In<QTreeWidget>("treeContents");
  auto* const last = contents.topLevelItem(contents.topLevelItemCount() - 1);
  contents.setCurrentItem(last);
  QTest::mouseClick(contents.viewport(), Qt::LeftButton, {},
                    contents.visualItemRect(last).center());
  EXPECT_NE(Text().find("HKEY_USERS\\.DEFAULT is " + m_sample.Folder() + "/userdef.reg"),
            std::string::npos)
      << Text();
}

TEST_F(frmHelpTest, SaysWhatIsWrongWithTheHelpFile) {
  const std::string whole = clsFileWorks::ReadWhole(SANDREL_HELP_FILE);
  const std::string file = m_temp.Of("sandrel.hlp");
  StartWith(file);
  std::string flipped = whole;
  flipped[whole.size() / 2] = static_cast<char>(~flipped[whole.size() / 2]);
  for (const std::string& content : {whole.substr(0, whole.size() / 2), flipped}) {
    clsFileWorks::ReplaceWhole(file, content);
    Choose("mnuHelpIndex");
    EXPECT_NE(Text().find("The file " + file + " is damaged"), std::string::npos) << Text();
  }
  clsFileWorks::DeleteFile(file);
  Choose("mnuHelpContents");
  EXPECT_NE(Text().find("There is no file " + file), std::string::npos) << Text();
  clsFileWorks::ReplaceWhole(file, whole);
  Choose("mnuHelpContents");
  EXPECT_EQ(Source(), "text:/01-introduction.md") << "it was put back";
}

TEST_F(frmHelpTest, AboutBox) {
  StartWith(SANDREL_HELP_FILE);
  ASSERT_TRUE(Choose("mnuHelpAbout"));
  auto* const about = Find<QDialog>("frmAbout");
  EXPECT_EQ(Find<QLabel>("lblProgramNameAndVersion")->text(), "Sandrel - Version " SANDREL_VERSION);
  Find<QPushButton>("cmdSysinfo")->click();
  EXPECT_EQ(m_boxes.Log, std::vector<std::string>{
                             "About Sandrel|System Information Is Unavailable At This Time"});
  QTest::keyClick(about, Qt::Key_Return);
  EXPECT_FALSE(about->isVisible());
}

}  // namespace
}  // namespace sandrel::test
