// Opens an analysis in the main window and prints how long the user waits.
//
//   bench_browser ANALYSIS
//
// One line a measurement, separated by tabs: its name, a number, its unit, what was measured. Every
// wait ends when the window is painted. Needs no display.

#include <fmt/format.h>

#include <QApplication>
#include <QMessageBox>
#include <QStyleFactory>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "platform/process/clsTopWindows.h"
#include "shell/frmSandrel.h"
#include "support/SampleMachine.h"
#include "support/TempFolder.h"

namespace {

using sandrel::ListView;
using sandrel::Node;
using Clock = std::chrono::steady_clock;

constexpr std::size_t FoldersVisited = 40;

void Print(const char* name, double number, const char* unit, const std::string& about) {
  fmt::print("{}\t{:.3f}\t{}\t{}\n", name, number, unit, about);
}

std::string Counted(std::size_t count, const char* what) {
  return fmt::format("{} {}", count, what);
}

/// Seconds until `step` is done and what it changed is painted.
double Seconds(const std::function<void()>& step) {
  const Clock::time_point begun = Clock::now();
  step();
  QApplication::processEvents();  // a view lays out what changed,
  QApplication::processEvents();  // then paints it
  return std::chrono::duration<double>(Clock::now() - begun).count();
}

/// Most memory in use so far, in MiB.
double PeakMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::strtod(line.c_str() + 6, nullptr) / 1024;
  }
  return 0;
}

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
    m_form.SetNoAutoLoadDatabase(true);
    m_form.Form_Load();
    const double opened = Seconds([&] { m_form.Browser().Open(analysis); });
    const std::string nodes = Counted(Controls().treeView.Count(), "nodes");
    Print("open", opened, "s", Counted(RowsOfTables(), "rows"));
    Print("memory", PeakMemory(), "MiB", "all pages");
    SwitchPages();
    Print("expand all", Seconds([&] { Choose("mnuViewExpandAll"); }), "s", nodes);
    Print("collapse all", Seconds([&] { Choose("mnuViewCollapseAll"); }), "s", nodes);
    Sort();
    Print("memory at the end", PeakMemory(), "MiB", "all pages, sorted");
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
    const auto click = [&] {
      Controls().treeView.SetSelectedItem(&node);
      Controls().treeView.NodeClick(node);
      Controls().treeView.Click();
    };
    const double taken = Seconds(click);
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

void Run(const std::string& analysis) {
  const sandrel::test::TempFolder temp;
  const sandrel::test::SampleMachine sample;
  sandrel::clsSettings settings(temp.Of("settings.ini"));
  const sandrel::clsHome home = sandrel::clsHome::Find(temp.Of("home"));
  settings.SaveSetting("Recent Files", "RecentFile1", analysis);
  sandrel::clsTopWindows windows;
  sandrel::StartOptions options;
  options.Machine = sample.Folder();
  sandrel::frmSandrel form(settings, home, windows, options);
  clsBench(form).Run(analysis);
  form.close();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fmt::print(stderr, "bench_browser ANALYSIS\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QTimer boxes;
  QObject::connect(&boxes, &QTimer::timeout, EndAtBox);
  boxes.start(std::chrono::milliseconds(100));
  try {
    Run(argv[1]);
  } catch (const std::exception& error) {
    fmt::print(stderr, "bench_browser: {}\n", error.what());
    return 2;
  }
  return 0;
}
