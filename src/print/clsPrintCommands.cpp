#include "print/clsPrintCommands.h"

#include <fmt/format.h>

#include "common/clsPathText.h"
#include "common/modOverwrite.h"
#include "print/clsPrintData.h"
#include "store/modTarget.h"

namespace sandrel {

// Where the pages go when the printer is a file; false when the user cancelled.
bool clsPrintCommands::ChooseFile(std::string& file) {
  if (!m_printer.WritesFile()) return true;
  file = m_shell.ChooseFile({"Print To PDF File", ".pdf", "", "PDF Files *.pdf|*.pdf",
                             clsPathText::TextBeforeLast(m_shell.State.AnalysisPath, "/"), true});
  if (file.empty()) return false;
  NeedTarget(file);
  return MayOverwrite(m_shell, file);
}

template <class Pages>
void clsPrintCommands::Print(Pages&& pages) {
  std::string file;
  if (!ChooseFile(file)) return;
  const clsPointerGuard pointer(m_shell, pointer::Hourglass);
  clsPrintJob job(m_shell, m_settings, m_printer, m_browser.Tree.PageCaption(), file);
  m_shell.SetStatusText(fmt::format("{} Page(s) Printed", pages(job)));
}

void clsPrintCommands::mnuFilePrint_Click() {
  m_shell.CommitPendingDeletes();
  Print([this](clsPrintJob& job) {
    return job.Print({job.LoadFields(m_browser.Pages.CurrentList()), m_controls.PageTag(),
                      m_browser.Tree.PageCaption()},
                     clsPrintJob::Widths::Even);
  });
}

void clsPrintCommands::PrintPreviewed(const PrintData& data) {
  Print([&data](clsPrintJob& job) { return job.Print(data, clsPrintJob::Widths::OfPage); });
}

void clsPrintCommands::mnuFilePrintPreview_Click() {
  m_shell.CommitPendingDeletes();
  PrintData data{{}, m_controls.PageTag(), m_browser.Tree.PageCaption()};
  {
    const clsPointerGuard pointer(m_shell, pointer::Hourglass);
    const auto sizer = m_printer.MakeSizer();
    const clsPrintGrid grid(m_settings);
    data.Fields = printdata::LoadFields(m_browser.Pages.CurrentList(), grid, *sizer);
  }
  ShowPreview(data);
}

void clsPrintCommands::mnuFilePrintSetup_Click() {
  ShowSetup();
}

// A cancelled dialog leaves the font as it was; a chosen one is saved when the grid ends.
void clsPrintCommands::mnuSettingsPrintFont_Click() {
  clsPrintGrid grid(m_settings);
  PrintFont font = grid.Font;
  if (!ChooseFont(font)) return;
  grid.Font = font;
  grid.SaveFont();  // what the user has chosen isn't lost without a word
}

}  // namespace sandrel
