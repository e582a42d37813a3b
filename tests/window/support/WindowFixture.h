// The main window over a sample machine, driven by clicks and keys.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/clsFileWorks.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"
#include "platform/process/clsWindowList.h"
#include "shell/frmSandrel.h"
#include "support/SampleMachine.h"
#include "support/TempFolder.h"
#include "window/support/BoxAnswerer.h"
#include "window/support/StatusWatch.h"

namespace sandrel::test {

/// The desktop's windows, and what was done to them.
class WindowRecorder final : public clsWindowList {
 public:
  std::vector<std::string> Log;

  void EnumWindows(const std::function<bool(WindowHandle)>&) const override {}
  std::string GetWindowText(WindowHandle) const override { return {}; }
  bool IsWindowVisible(WindowHandle) const override { return true; }
  bool IsIconic(WindowHandle) const override { return false; }
  void ShowWindow(WindowHandle window, int command) override {
    Log.push_back("ShowWindow " + std::to_string(window) + " " + std::to_string(command));
  }
  void OpenIcon(WindowHandle) override { Log.emplace_back("OpenIcon"); }
  void SetForegroundWindow(WindowHandle) override { Log.emplace_back("SetForegroundWindow"); }
};

class WindowFixture : public testing::Test {
 protected:
  ~WindowFixture() override { Stop(); }

  /// Makes the window and brings it up.
  void Start(StartOptions options = {}) {
    options.Machine = m_sample.Folder();
    m_form = std::make_unique<frmSandrel>(m_settings, m_home, m_windows, options);
    m_watch.Follow(Controls().stbrStatus);
    if (OnMade) OnMade();
    m_form->Form_Load();
  }
  /// Ends the program as its user would, and forgets the window.
  void Stop();
  /// Called between the making of a window and its start.
  std::function<void()> OnMade;

  clsMainControls& Controls() { return m_form->Controls(); }
  TreeView& Tree() { return Controls().treeView; }
  ListView& List(int index) { return Controls().List(index); }
  ListView& Shown() { return List(PageIndex(Controls().PageTag())); }
  std::string Status() { return Controls().stbrStatus.Status(); }
  std::string Working() const { return m_home.WorkingDatabase(); }

  template <class Widget = QWidget>
  Widget* Find(const std::string& name) {
    auto* const found = m_form->findChild<Widget*>(QString::fromStdString(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  QTreeView* ListWidget(int index) {
    return Find<QTreeView>(clsMainControls::Element("listView", index));
  }

  bool IsEnabled(const std::string& item) { return Find<QAction>(item)->isEnabled(); }
  /// Chooses a menu item; false when it is disabled.
  bool Choose(const std::string& item) {
    auto* const action = Find<QAction>(item);
    if (!action->isEnabled()) return false;
    action->trigger();
    return true;
  }
  /// What can be run now, each by its menu item and its button: "Before After Replace Stop", and
  /// "Menus" for those that a scan locks. One that the two don't agree on is followed by "?".
  std::string Commands();
  void PressButton(const std::string& key) {
    QTest::mouseClick(Find<QToolButton>("tlbarMain." + key), Qt::LeftButton);
  }

  /// The place of a node in the tree's view.
  QModelIndex IndexOf(const Node& node) {
    QAbstractItemModel* const model = Find<QTreeView>("treeView")->model();
    const QModelIndex parent = node.Parent() == nullptr ? QModelIndex() : IndexOf(*node.Parent());
    return model->index(static_cast<int>(node.Index()), 0, parent);
  }
  /// Clicks on a node, which must be in view.
  void ClickNode(const std::string& key) {
    auto* const view = Find<QTreeView>("treeView");
    const QModelIndex index = IndexOf(Tree().Item(key));
    view->scrollTo(index);
    const QRect place = view->visualRect(index) & view->viewport()->rect();
    ASSERT_TRUE(place.isValid()) << key << " is not shown";
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place.center());
  }
  /// The place of a row's first cell in its list's view.
  QPoint RowPlace(int list, std::size_t row) {
    QTreeView* const view = ListWidget(list);
    const QModelIndex index = view->model()->index(static_cast<int>(row), 0);
    view->scrollTo(index);
    return view->visualRect(index).center();
  }
  void ClickRow(int list, std::size_t row, Qt::KeyboardModifiers keys = {}) {
    QTest::mouseClick(ListWidget(list)->viewport(), Qt::LeftButton, keys, RowPlace(list, row));
  }
  void DoubleClickRow(int list, std::size_t row) {
    ClickRow(list, row);
    QTest::mouseDClick(ListWidget(list)->viewport(), Qt::LeftButton, {}, RowPlace(list, row));
  }
  /// The texts of a list's rows, cells joined with "|".
  std::vector<std::string> Rows(const ListView& list) {
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < list.RowCount(); ++row) {
      std::string text;
      for (std::size_t cell = 0; cell < list.Columns().size(); ++cell) {
        text += (cell > 0 ? "|" : "") + std::string(list.Cell(row, cell));
      }
      rows.push_back(text);
    }
    return rows;
  }
  /// Takes both snapshots round `install` and makes the analysis `path`, without the window.
  std::string MakeAnalysis(const std::string& name, const std::function<void()>& install);

  SampleMachine m_sample;
  TempFolder m_temp;
  clsSettings m_settings{m_temp.Of("settings.ini")};
  clsHome m_home = clsHome::Find(m_temp.Of("home"));
  WindowRecorder m_windows;
  BoxAnswerer m_boxes;
  StatusWatch m_watch;
  std::unique_ptr<frmSandrel> m_form;
};

}  // namespace sandrel::test
