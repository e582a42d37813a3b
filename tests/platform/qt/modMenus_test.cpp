#include "platform/qt/modMenus.h"

#include <gtest/gtest.h>

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <string>

#include "platform/controls/Menu.h"

namespace sandrel::qt {
namespace {

class modMenusTest : public testing::Test {
 protected:
  modMenusTest() {
    m_menus.Add("", "mnuFile", "&File").Click = [this] {
      m_ran += "refresh ";
      m_menus["mnuFileRecent(1)"].SetCaption("&1 R&&D.mdb");
    };
    MenuItem& open = m_menus.Add("mnuFile", "mnuFileOpen", "&Open");
    open.Shortcut = "Ctrl+O";
    open.Click = [this] { m_ran += "open "; };
    m_menus.Add("mnuFile", "mnuFileRecent(1)", "none").Click = [this] { m_ran += "recent "; };
    m_menus.Add("mnuFile", "mnuFileLater", "Later").Shortcut = "Ctrl+L";
    m_menus.Add("", "mnuView", "&View");
    m_menus.Add("mnuView", "mnuViewBars", "&Bars");
    MenuItem& tick = m_menus.Add("mnuViewBars", "mnuViewToolbar", "&Toolbar");
    tick.CanCheck = true;
    tick.Shortcut = "Ctrl+T";
    tick.Click = [this] { m_ran += "tick "; };
    ShowMenus(m_menus, *m_window.menuBar());
    m_window.show();
    m_window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_window));
  }

  std::string Press(Qt::Key key) {
    m_ran.clear();
    QTest::keyClick(&m_window, key, Qt::ControlModifier);
    return m_ran;
  }

  Menus m_menus;
  std::string m_ran;
  QMainWindow m_window;
};

TEST_F(modMenusTest, ShortcutsRunWhatIsUsableAlone) {
  EXPECT_EQ(Press(Qt::Key_O), "open ");
  EXPECT_EQ(Press(Qt::Key_T), "tick ");
  QAction& tick = *m_window.findChild<QAction*>("mnuViewToolbar");
  EXPECT_FALSE(tick.isChecked());  // the command alone decides
  m_menus["mnuViewToolbar"].SetChecked(true);
  EXPECT_TRUE(tick.isChecked());
  EXPECT_EQ(Press(Qt::Key_L), "");
  m_menus["mnuFile"].SetEnabled(false);
  m_menus["mnuView"].SetEnabled(false);
  EXPECT_EQ(Press(Qt::Key_O) + Press(Qt::Key_T), "");
  m_menus["mnuFile"].SetEnabled(true);
  EXPECT_EQ(Press(Qt::Key_O), "open ");
}

// The bar goes on following the items that a popup shows, and their shortcuts stay unambiguous.
TEST_F(modMenusTest, APopupSharesItemsWithTheBar) {
  QMenu popup(&m_window);
  ShowPopup(m_menus["mnuFile"], popup);
  m_menus["mnuFileOpen"].SetCaption("&Open...");
  popup.popup(QPoint(0, 0));
  EXPECT_EQ(popup.actions()[1]->text(), "&1 R&&D.mdb");
  popup.actions()[1]->trigger();
  EXPECT_EQ(m_ran, "refresh recent ");
  popup.hide();
  EXPECT_EQ(m_window.findChild<QMenu*>("mnuFile")->actions()[0]->text(), "&Open...");
  EXPECT_EQ(Press(Qt::Key_O), "open ");
}

}  // namespace
}  // namespace sandrel::qt
