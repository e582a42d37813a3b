// Prints and previews the longest page of an analysis and prints how long the user waits.
//
//   bench_print ANALYSIS
//
// One line a measurement, separated by tabs: its name, a number, its unit, what was measured. A
// wait for the preview ends when it is painted. Needs no display.

#include <QKeyEvent>
#include <algorithm>

#include "WindowBench.h"
#include "print/clsPrintData.h"
#include "print/frmPrintPreview.h"

namespace {

using namespace sandrel::bench;
using sandrel::clsPrintGrid;
using sandrel::clsPrintJob;
using sandrel::frmPrintPreview;
using sandrel::ListView;
using sandrel::PrintData;

class clsBench {
 public:
  explicit clsBench(sandrel::frmSandrel& form) : m_form(form) {}

  void Run(const std::string& analysis) {
    m_form.Browser().Open(analysis);
    for (int page = 0; page < sandrel::page::Stats; ++page) {
      if (List().RowCount() < m_form.Controls().List(page).RowCount()) m_page = page;
    }
    if (List().RowCount() >= clsPrintGrid::MaxRows) throw std::runtime_error("too many rows");
    PrintToFile();
    for (const char* zoom : {"50%", "100%", "200%"}) Preview(zoom);
    Print("preview", m_shown, "s", Rows() + ", slowest zoom");
    Print("paging", m_turned * 1000, "ms", "slowest zoom and page");
    Print("memory at the end", Memory("VmHWM:"), "MiB", Rows());
  }

 private:
  const ListView& List() { return m_form.Controls().List(m_page); }
  std::string Rows() { return Counted(List().RowCount(), "rows"); }

  void PrintToFile() {
    int pages = 0;
    const double taken = Seconds([&] {
      clsPrintJob job(m_form, m_settings, m_printer, "bench", m_temp.Of("bench.pdf"));
      pages = job.Print({job.LoadFields(List()), sandrel::PageName(m_page), "bench"},
                        clsPrintJob::Widths::Even);
    });
    Print("print", taken, "s", Rows() + ", " + Counted(static_cast<std::size_t>(pages), "pages"));
  }

  /// From the command to the first page, and from page to page: through the first blocks, to the
  /// end, and back.
  void Preview(const std::string& zoom) {
    m_settings.SaveSetting("PrintGridPreview", "ZoomPercent", zoom);
    std::unique_ptr<frmPrintPreview> preview;
    PrintData data{{}, sandrel::PageName(m_page), "bench"};
    m_shown = std::max(
        m_shown, Seconds([&] {
          const clsPrintGrid grid(m_settings);
          data.Fields = sandrel::printdata::LoadFields(List(), grid, *m_printer.MakeSizer());
          preview = std::make_unique<frmPrintPreview>(m_form, m_settings, m_printer, data, nullptr);
          preview->show();
        }));
    const auto press = [&](Qt::Key key) {
      const double taken = Seconds([&] {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(preview.get(), &event);
      });
      m_turned = std::max(m_turned, taken);
    };
    for (int i = 0; i < 22; ++i) press(Qt::Key_PageDown);
    for (const Qt::Key key : {Qt::Key_End, Qt::Key_PageUp, Qt::Key_Home}) press(key);
  }

  sandrel::frmSandrel& m_form;
  sandrel::test::TempFolder m_temp;
  sandrel::clsSettings m_settings{m_temp.Of("settings.ini")};
  sandrel::clsQtPrinter m_printer{true};
  int m_page = 0;
  double m_shown = 0, m_turned = 0;  // seconds
};

}  // namespace

int main(int argc, char** argv) {
  return Main(argc, argv, [](const std::string& analysis) {
    WithWindow(analysis, [&](sandrel::frmSandrel& form) { clsBench(form).Run(analysis); });
  });
}
