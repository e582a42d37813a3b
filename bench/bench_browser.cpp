// Opens an analysis in the main window and prints how long the user waits.
//
//   bench_browser ANALYSIS
//
// One line a measurement, separated by tabs: its name, a number, its unit, what was measured. Every
// wait ends when the window is painted. Needs no display.

#include <QMessageBox>
#include <QTimer>
#include <algorithm>
#include <vector>

#include "WindowBench.h"

namespace {

using namespace sandrel::bench;
using sandrel::ListView;
using sandrel::Node;

constexpr std::size_t FoldersVisited = 40;

/// Nobody is there to answer: the first box ends the program.
void EndAtBox() {
  const auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  if (box == nullptr) return;
  fmt::print(stderr, "bench_browser: {}\n", box->text().toStdString());
  std::_Exit(2);
}

class clsBench {
 public:
  explicit clsBench(sandrel::frmSandrel& form) : m_form(form) {}

  void Run(const std::string& analysis) {
    const double opened = Seconds([&] { m_form.Browser().Open(analysis); });
    const std::string nodes = Counted(Controls().treeView.Count(), "nodes");
    Print("open", opened, "s", Counted(RowsOfTables(), "rows"));
    Print("memory", Memory("VmHWM:"), "MiB", "all pages");
    SwitchPages();
    Print("expand all", Seconds([&] { Choose("mnuViewExpandAll"); }), "s", nodes);
    Print("collapse all", Seconds([&] { Choose("mnuViewCollapseAll"); }), "s", nodes);
    Sort();
    Print("memory at the end", Memory("VmHWM:"), "MiB", "all pages, sorted");
  }

 private:
  sandrel::clsMainControls& Controls() { return m_form.Controls(); }
  /// Of the nine pages of one table.
  std::size_t RowsOfTables() {
    std::size_t rows = 0;
    for (int page = 0; page < sandrel::page::Stats; ++page) {
      rows += Controls().List(page).RowCount();
    }
    return rows;
  }
  void Choose(const char* item) { Controls().Menus[item].Click(); }

  void Visit(Node& node) {
    const double taken = Seconds([&] { Click(Controls(), node); });
    if (taken <= m_worst) return;
    m_worst = taken;
    m_worstNode = node.Key();
  }

  /// Clicks on the nodes that every analysis has, and on folders evenly spread over the others.
  void SwitchPages() {
    std::vector<Node*> fixed, folders;
    Collect(*Controls().treeView.Roots().front(), fixed, folders);
    for (Node* const node : fixed) Visit(*node);
    const std::size_t step = std::max<std::size_t>(1, folders.size() / FoldersVisited);
    for (std::size_t i = 0; i < folders.size(); i += step) Visit(*folders[i]);
    Print("page switch", m_worst * 1000, "ms", m_worstNode);
  }

  static void Collect(Node& node, std::vector<Node*>& fixed, std::vector<Node*>& folders) {
    // A folder's key is its path, which begins with the root's text.
    const bool isFolder = node.Parent() != nullptr && node.Key() == node.FullPath();
    (isFolder ? folders : fixed).push_back(&node);
    for (const auto& child : node.Children()) Collect(*child, fixed, folders);
  }

  /// By the column of the largest registry page that has most distinct texts.
  void Sort() {
    constexpr std::size_t ValueName = 2;
    Visit(Controls().treeView.Item("Registry"));
    ListView& list = Controls().List(sandrel::page::AllRegistry);
    const std::string rows = Counted(list.RowCount(), "rows");
    Print("sort", Seconds([&] { list.ColumnClick(ValueName); }), "s", rows);
  }

  sandrel::frmSandrel& m_form;
  double m_worst = 0;
  std::string m_worstNode;
};

}  // namespace

int main(int argc, char** argv) {
  return Main(argc, argv, [](const std::string& analysis) {
    QTimer boxes;
    QObject::connect(&boxes, &QTimer::timeout, EndAtBox);
    boxes.start(std::chrono::milliseconds(100));
    WithWindow(analysis, [&](sandrel::frmSandrel& form) { clsBench(form).Run(analysis); });
  });
}
