#include "print/clsPrintCommands.h"

#include <fmt/format.h>

#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "print/clsPrintData.h"
#include "print/clsPrintGrid.h"

namespace sandrel {

PrintArea AreaOf(const clsPaper& paper) {
  constexpr double TwipsPerInch = 1440;
  PrintArea area;
  area.LeftMargin = 0.5F;
  area.TopMargin = 0.5F;
  area.PrintWidth = static_cast<float>(paper.Width() / TwipsPerInch - 1);
  area.PrintHeight = static_cast<float>(paper.Height() / TwipsPerInch - 1);
  return area;
}

PrintData clsPrintCommands::Load(clsPrintDevice& device) {
  const clsPointerGuard pointer(m_shell, pointer::Hourglass);
  const clsPrintGrid grid(m_settings);
  return {printdata::LoadFields(m_browser.Pages.CurrentList(), grid, device), m_controls.PageTag(),
          m_browser.Tree.PageCaption()};
}

// Where the pages go when the printer is a file; false when the user cancelled.
bool clsPrintCommands::ChooseFile(std::string& file) {
  if (!m_printer.WritesFile()) return true;
  file = m_shell.ChooseFile({"Print To PDF File", ".pdf", "", "PDF Files *.pdf|*.pdf",
                             clsPathText::TextBeforeLast(m_shell.State.AnalysisPath, "/"), true});
  if (file.empty()) return false;
  return !clsFileWorks::FileExists(file) ||
         m_shell.Ask({fmt::format("WARNING! An existing file by that name ({}) has been found!\n\n"
                                  "Overwrite the existing file?",
                                  clsPathText::TextAfterLast(file, "/")),
                      "Confirmation Required", Buttons::YesNo, BoxIcon::None}) == Answer::Yes;
}

// Prints what the preview shows, or else the list on show.
void clsPrintCommands::Print(const PrintData* previewed) {
  std::string file;
  if (!ChooseFile(file)) return;
  const clsPointerGuard pointer(m_shell, pointer::Hourglass);
  const auto document = m_printer.StartDoc(m_browser.Tree.PageCaption(), file);
  clsPrintDevice& device = document->Device();
  const PrintData loaded = previewed == nullptr ? Load(device) : PrintData();
  clsPrintGrid grid(m_settings);
  const printdata::Left left = previewed == nullptr
                                   ? printdata::FillPrintGrid(loaded.Fields, grid)
                                   : printdata::LoadGrid(previewed->Fields, previewed->Tag, grid);
  printdata::TellLeftOfPrint(m_shell, left);
  m_shell.SetMousePointer(pointer::Hourglass);
  grid.Caption = previewed == nullptr ? loaded.Caption : previewed->Caption;
  PrintArea area = AreaOf(m_printer);
  grid.PrintGrid(area, m_printer, device);
  m_shell.DoEvents(false);
  document->EndDoc();
  m_shell.SetStatusText(fmt::format("{} Page(s) Printed", grid.NumPages()));
}

void clsPrintCommands::mnuFilePrint_Click() {
  m_shell.CommitPendingDeletes();
  Print(nullptr);
}

void clsPrintCommands::PrintPreviewed(const PrintData& data) {
  Print(&data);
}

void clsPrintCommands::mnuFilePrintPreview_Click() {
  m_shell.CommitPendingDeletes();
  const auto sizer = m_printer.MakeSizer();
  ShowPreview(Load(*sizer));
}

void clsPrintCommands::mnuFilePrintSetup_Click() {
  ShowSetup();
}

// A cancelled dialog leaves the font as it was; a chosen one is saved when the grid ends.
void clsPrintCommands::mnuSettingsPrintFont_Click() {
  clsPrintGrid grid(m_settings);
  PrintFont font = grid.Font;
  if (ChooseFont(font)) grid.Font = font;
}

}  // namespace sandrel
