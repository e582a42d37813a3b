#include "print/clsPrintJob.h"

#include "print/clsPrintData.h"

namespace sandrel {

PrintArea AreaOf(const clsPrintGrid& grid, const clsPaper& paper) {
  constexpr double TwipsPerInch = 1440;
  PrintArea area;
  area.LeftMargin = grid.PrintLeftMargin;
  area.TopMargin = grid.PrintTopMargin;
  area.PrintWidth = static_cast<float>(paper.Width() / TwipsPerInch - 2 * area.LeftMargin);
  area.PrintHeight = static_cast<float>(paper.Height() / TwipsPerInch - 2 * area.TopMargin);
  return area;
}

clsPrintJob::clsPrintJob(clsShell& shell, clsSettings& settings, clsPrinter& printer,
                         const std::string& title, const std::string& file)
    : m_shell(shell),
      m_printer(printer),
      m_grid(settings),
      m_document(printer.StartDoc(title, file)) {}

clsFields clsPrintJob::LoadFields(const ListView& list) {
  return printdata::LoadFields(list, m_grid, Device());
}

int clsPrintJob::Print(const PrintData& data, Widths widths) {
  const printdata::Left left = widths == Widths::OfPage
                                   ? printdata::LoadGrid(data.Fields, data.Tag, m_grid)
                                   : printdata::FillPrintGrid(data.Fields, m_grid);
  printdata::TellLeftOfPrint(m_shell, left);
  m_grid.Caption = data.Caption;
  PrintArea area = AreaOf(m_grid, m_printer);
  m_grid.PrintGrid(area, m_printer, Device());
  m_shell.DoEvents(false);
  m_document->EndDoc();
  return m_grid.NumPages();
}

}  // namespace sandrel
