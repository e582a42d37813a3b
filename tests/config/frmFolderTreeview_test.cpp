#include "config/frmFolderTreeview.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>
#include <filesystem>

#include "support/SampleMachine.h"
#include "support/TempFolder.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

class frmFolderTreeviewTest : public testing::Test {
 protected:
  void Start(std::unique_ptr<clsFolderSource> source) {
    m_form = std::make_unique<frmFolderTreeview>(std::move(source), nullptr);
    m_form->show();
    QApplication::setActiveWindow(m_form.get());
  }
  void StartOnMachine() { Start(MachineFolders(clsMachine::Open(m_sample.Folder()))); }

  template <class Widget>
  Widget* Find(const char* name) {
    return m_form->findChild<Widget*>(name);
  }
  QTreeView* Tree() { return Find<QTreeView>("ftvTreeview"); }
  std::string Text() { return Find<QLineEdit>("txtFolder")->text().toStdString(); }
  /// The names from the root to the tree's current folder, joined with "|".
  std::string Current() {
    QString names;
    for (QModelIndex at = Tree()->currentIndex(); at.isValid(); at = at.parent()) {
      names.prepend("|" + at.data().toString());
    }
    return names.mid(1).toStdString();
  }
  /// Replaces the text key by key.
  void Type(const char* text) {
    Find<QLineEdit>("txtFolder")->selectAll();
    QTest::keyClicks(Find<QLineEdit>("txtFolder"), text);
  }
  void Click(const char* name, const QModelIndex& parent) {
    QAbstractItemModel* const model = Tree()->model();
    for (int row = 0; row < model->rowCount(parent); ++row) {
      const QModelIndex index = model->index(row, 0, parent);
      if (index.data().toString() != name) continue;
      QTest::mouseClick(Tree()->viewport(), Qt::LeftButton, {}, Tree()->visualRect(index).center());
      return;
    }
    FAIL() << name << " isn't there";
  }
  QModelIndex Root() { return Tree()->model()->index(0, 0); }

  test::SampleMachine m_sample;
  std::unique_ptr<frmFolderTreeview> m_form;
};

TEST_F(frmFolderTreeviewTest, TheTreesFolderIsTheTextAndReadWhenOpened) {
  StartOnMachine();
  EXPECT_EQ(m_form->windowTitle(), "Browse");
  EXPECT_EQ(Find<QLineEdit>("txtFolder")->selectedText(), "C:\\");
  QTest::keyClick(m_form->focusWidget(), Qt::Key_Down);
  EXPECT_EQ(Text(), "C:\\Program Files");
  Click("windows", Root());
  EXPECT_EQ(Text(), "C:\\windows");
  EXPECT_TRUE(Tree()->model()->hasChildren(Tree()->currentIndex()));
  EXPECT_EQ(Tree()->model()->rowCount(Tree()->currentIndex()), 0);
  m_sample.MakeFolder("C:\\windows\\later");
  for (const auto key : {Qt::Key_Right, Qt::Key_Down}) QTest::keyClick(Tree(), key);
  EXPECT_EQ(Text(), "C:\\windows\\later");
  EXPECT_FALSE(Tree()->model()->hasChildren(Tree()->currentIndex()));
  QTest::keyClick(Tree(), Qt::Key_Return);
  EXPECT_EQ(m_form->result(), QDialog::Accepted);
  EXPECT_EQ(m_form->Folder(), "C:\\windows\\later");
}

TEST_F(frmFolderTreeviewTest, TheTreeFollowsTheTypedPathAsFarAsItExists) {
  StartOnMachine();
  const struct {
    const char* Typed;
    std::string Tree;
    std::string Chosen;
  } cases[] = {{"c:\\PROGRAM FILES\\tool\\", "C:|Program Files|Tool", "C:\\Program Files\\Tool"},
               {"c:/users/x/new", "C:|users", "c:\\users\\x\\new"},
               {"\\windows", "C:|windows", "C:\\windows"},
               {"Q:\\x", "C:|windows", "Q:\\x"}};
  for (const auto& [typed, tree, chosen] : cases) {
    Type(typed);
    EXPECT_EQ(Text(), typed);
    EXPECT_EQ(Current(), tree);
    QTest::keyClick(Find<QLineEdit>("txtFolder"), Qt::Key_Return);
    EXPECT_EQ(m_form->Folder(), chosen);
    m_form->show();
  }
  // The folder that the tree is on already takes the text back.
  Click("windows", Root());
  EXPECT_EQ(Text(), "C:\\windows");
  Type(" ");
  EXPECT_FALSE(Find<QPushButton>("cmdOK")->isEnabled());
}

TEST_F(frmFolderTreeviewTest, ChoosesHostFoldersWhateverTheirBytes) {
  const test::TempFolder home;
  const test::Variables variables{{"HOME", home.Path()}};
  std::filesystem::create_directory(home.Of("caf\xE9"));
  Start(HostFolders());
  m_form->SetLabel("&Where to");
  EXPECT_EQ(Current(), "Home");
  QTest::keyClick(Tree(), Qt::Key_Down);
  m_form->accept();
  EXPECT_EQ(m_form->Folder(), home.Of("caf\xE9"));

  m_form->show();
  QApplication::setActiveWindow(m_form.get());
  Tree()->setFocus();
  QTest::keyClick(m_form.get(), Qt::Key_W, Qt::AltModifier);
  EXPECT_TRUE(Find<QLineEdit>("txtFolder")->hasFocus());
  Type("~/to/be made");
  EXPECT_EQ(Current(), "Home");
  m_form->accept();
  EXPECT_EQ(m_form->Folder(), home.Of("to/be made"));
}

TEST_F(frmFolderTreeviewTest, ChoosesComputers) {
  const test::TempFolder network;
  std::filesystem::create_directory_symlink(m_sample.Folder(), network.Of("BOX"));
  std::filesystem::create_directory(network.Of("empty"));
  const test::Variables variables{{"SANDREL_NETWORK", network.Path()}};
  Start(NetworkComputers());
  EXPECT_EQ(Current(), "Network Neighborhood");
  EXPECT_EQ(Tree()->model()->rowCount(Root()), 1);
  EXPECT_FALSE(Find<QPushButton>("cmdOK")->isEnabled());
  Type("\\\\box");
  EXPECT_EQ(Current(), "Network Neighborhood|BOX");
  m_form->accept();
  EXPECT_EQ(m_form->Folder(), "BOX");
}

}  // namespace
}  // namespace sandrel
