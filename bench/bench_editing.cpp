// Edits an analysis in the main window and prints how long the user waits.
//
//   bench_editing ANALYSIS
//
// On each page with enough rows the first 100,000 are selected, copied, exported when they are
// registry values, deleted and brought back. One line a measurement, separated by tabs: its name, a
// number, its unit, the page. Every wait ends when the window is painted. The analysis is left as
// it was. Needs no display.

#include <QMessageBox>

#include "WindowBench.h"
#include "window/support/BoxAnswerer.h"

namespace {

using namespace sandrel::bench;
using sandrel::ListView;
namespace page = sandrel::page;

constexpr std::size_t LargePage = 5'000;  // rows
constexpr std::size_t Step = 5;

struct Place {
  const char* Node;
  int Page;
  bool IsRegistry;
};
constexpr Place Places[] = {
    {"NewRegistry", page::NewRegistry, true},
    {"Registry", page::AllRegistry, true},
    {"HKEY_LOCAL_MACHINE_NewRegistry", page::SharedPage, true},
    {"NewFiles", page::NewFiles, false},
    {"Files", page::AllFiles, false},
};

class clsBench {
 public:
  explicit clsBench(sandrel::frmSandrel& form) : m_form(form) {
    // Only questions are answered: an error ends the program.
    m_boxes.OnBox = [](QWidget& box) {
      const auto* const message = qobject_cast<QMessageBox*>(&box);
      if (message == nullptr || message->windowTitle() == "Sandrel Manager") return;
      fmt::print(stderr, "bench_editing: {}\n", message->text().toStdString());
      std::_Exit(2);
    };
  }

  void Run(const std::string& analysis) {
    m_form.Browser().Open(analysis);
    for (const Place& place : Places) Edit(place);
    Print("memory at the end", Memory("VmHWM:"), "MiB", "all pages");
  }

 private:
  sandrel::clsMainControls& Controls() { return m_form.Controls(); }
  std::size_t Rows(const Place& place) { return Controls().List(place.Page).RowCount(); }

  void Select(ListView& list) {
    list.BeginUpdate();
    list.SelectAll(false);
    for (std::size_t row = 0; row < list.RowCount(); row += Step) list.Select(row, true);
    list.EndUpdate();
  }

  /// Rows that are not gone, or have not come back, are no measurement.
  void Expect(std::size_t rows, const Place& place) {
    if (Rows(place) == rows) return;
    throw std::runtime_error(
        fmt::format("{} has {} rows instead of {}", place.Node, Rows(place), rows));
  }

  void Edit(const Place& place) {
    Click(Controls(), Controls().treeView.Item(place.Node));
    const std::size_t rows = Rows(place);
    if (rows < LargePage) return;
    Select(Controls().List(place.Page));
    const std::size_t edited = Controls().List(place.Page).SelectedCount();
    const std::string about = fmt::format("{} of {} rows", edited, rows);
    const auto measure = [&](const char* name, const char* item) {
      const double taken = Seconds([&] { Controls().Menus[item].Click(); });
      Print(fmt::format("{} on {}", name, place.Node), taken, "s", about);
    };
    measure("copy", "mnuEditCopy");
    if (place.IsRegistry) {
      m_boxes.Files.push_back(m_folder.Of(fmt::format("{}.reg", place.Node)));
      measure("export", "mnuFileExportToRegFile");
    }
    const double before = Memory("VmRSS:");
    m_boxes.Buttons.emplace_back("Yes");
    measure("delete", "mnuEditDelete");
    Print(fmt::format("memory for delete on {}", place.Node), Memory("VmRSS:") - before, "MiB",
          about);
    Expect(rows - edited, place);
    measure("undo", "mnuEditUndo");
    Expect(rows, place);
  }

  sandrel::frmSandrel& m_form;
  sandrel::test::BoxAnswerer m_boxes;
  sandrel::test::TempFolder m_folder;
};

}  // namespace

int main(int argc, char** argv) {
  return Main(argc, argv, [](const std::string& analysis) {
    WithWindow(analysis, [&](sandrel::frmSandrel& form) { clsBench(form).Run(analysis); });
  });
}
