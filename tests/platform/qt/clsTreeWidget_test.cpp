#include "platform/qt/clsTreeWidget.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QTest>

#include "platform/qt/clsTreeModel.h"

namespace sandrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TreeWidgetTest : public testing::Test {
 protected:
  TreeWidgetTest() {
    tree.Add(nullptr, "Root", "office.zqd", "sandr");
    for (const char* const key : {"Registry", "Files", "Ini"}) Add("Root", key);
    for (const char* const key : {"New", "Deleted"}) Add("Files", key);
    tree.NodeClick = [this](Node& node) { events.push_back("NodeClick " + node.Key()); };
    tree.Click = [this] { events.push_back("Click " + tree.SelectedItem()->Key()); };
    tree.Collapse = [this](Node& node) { events.push_back("Collapse " + node.Key()); };
    tree.KeyUp = [this](int code) { events.push_back("KeyUp " + std::to_string(code)); };
    widget.setGeometry(0, 0, 240, 300);
    window.resize(300, 400);
    tree.SetExpanded(tree.Item("Root"), true);
    window.show();
    QApplication::setActiveWindow(&window);
    widget.setFocus();
    QCoreApplication::processEvents();
    events.clear();
  }

  Node& Add(const char* parent, std::string key) {
    std::string text = key;
    return tree.Add(&tree.Item(parent), std::move(key), std::move(text), "newfolder");
  }

  QModelIndex IndexOf(const Node& node) const {
    return static_cast<clsTreeModel*>(widget.model())->IndexOf(&node);
  }
  QPoint Place(const char* key) const {
    return widget.visualRect(IndexOf(tree.Item(key))).center();
  }
  void ClickOn(QPoint place) {
    QTest::mouseClick(widget.viewport(), Qt::LeftButton, Qt::NoModifier, place);
  }
  void Key(Qt::Key key) { QTest::keyClick(&widget, key); }

  /// Nodes whose expansion on the screen is another than the tree's.
  std::vector<std::string> Wrong(const std::vector<std::unique_ptr<Node>>& nodes) const {
    std::vector<std::string> wrong;
    for (const auto& node : nodes) {
      if (widget.isExpanded(IndexOf(*node)) != node->Expanded()) wrong.push_back(node->FullPath());
      for (std::string& below : Wrong(node->Children())) wrong.push_back(std::move(below));
    }
    return wrong;
  }

  TreeView tree;
  QWidget window;
  clsTreeWidget widget{tree, &window};
  QAbstractItemModelTester tester{widget.model(),
                                  QAbstractItemModelTester::FailureReportingMode::Fatal};
  std::vector<std::string> events;
};

TEST_F(TreeWidgetTest, AClickSelectsBeforeItIsTold) {
  ClickOn(Place("Files"));
  EXPECT_THAT(events, ElementsAre("NodeClick Files", "Click Files"));
  events.clear();
  ClickOn({100, 280});  // below the nodes
  QTest::mouseClick(widget.viewport(), Qt::RightButton, Qt::NoModifier, Place("Ini"));
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(tree.SelectedItem(), &tree.Item("Files"));

  // The mouse is let go elsewhere: page and selected node still agree.
  QTest::mousePress(widget.viewport(), Qt::LeftButton, Qt::NoModifier, Place("Ini"));
  QTest::mouseMove(widget.viewport(), Place("Registry"));
  QTest::mouseRelease(widget.viewport(), Qt::LeftButton, Qt::NoModifier, Place("Registry"));
  EXPECT_THAT(events, ElementsAre("NodeClick Ini", "Click Ini"));
}

TEST_F(TreeWidgetTest, CollapsingMovesTheSelectionOnce) {
  tree.SetExpanded(tree.Item("Files"), true);
  ClickOn(Place("Deleted"));
  events.clear();
  const QRect files = widget.visualRect(IndexOf(tree.Item("Files")));
  ClickOn({files.left() - widget.indentation() / 2, files.center().y()});
  EXPECT_THAT(events, ElementsAre("Collapse Files"));
  EXPECT_EQ(tree.SelectedItem(), &tree.Item("Files"));
  EXPECT_EQ(widget.currentIndex(), IndexOf(tree.Item("Files")));
  events.clear();
  Key(Qt::Key_Right);
  EXPECT_TRUE(tree.Item("Files").Expanded());
  Key(Qt::Key_Left);
  EXPECT_FALSE(tree.Item("Files").Expanded());
  EXPECT_THAT(events, ElementsAre("KeyUp 39", "Collapse Files", "KeyUp 37"));
}

TEST_F(TreeWidgetTest, ARebuiltBranchKeepsItsNeighboursAndItsOwnExpansion) {
  tree.SetExpandedDeep(tree.Item("Files"), true);
  EXPECT_FALSE(tree.Item("Files").Expanded());
  EXPECT_THAT(Wrong(tree.Roots()), IsEmpty());
  tree.SetExpandedAll(true);
  EXPECT_THAT(Wrong(tree.Roots()), IsEmpty());
  tree.SetSelectedItem(&tree.Item("Deleted"));
  for (int round = 0; round < 2; ++round) {
    tree.Rebuild(tree.Item("Files"), [&] {
      Add("Files", "New");
      Add("New", "C:");
      Add("C:", "Windows");
      Add("Files", "Changed");
      QCoreApplication::processEvents();  // a paint in between sees the branch without children
    });
    EXPECT_THAT(Wrong(tree.Roots()), IsEmpty());
    EXPECT_EQ(tree.Item("C:").Expanded(), round == 1);  // as it was
    tree.SetSelectedItem(&tree.Item("Windows"));
    tree.EnsureVisible(tree.Item("Windows"));
    EXPECT_LT(Place("Registry").y(), Place("C:").y());
    EXPECT_LT(Place("Changed").y(), Place("Ini").y());
  }
  tree.Rebuild(tree.Item("Files"), [] {});
  EXPECT_EQ(tree.SelectedItem(), &tree.Item("Files"));
  EXPECT_EQ(widget.currentIndex(), IndexOf(tree.Item("Files")));
  tree.Clear();
  EXPECT_FALSE(widget.currentIndex().isValid());
}

}  // namespace
}  // namespace sandrel
