// One document on the printer, from its start to its end.
#pragma once

#include <memory>
#include <string>

#include "common/clsShell.h"
#include "config/clsSettings.h"
#include "platform/controls/ListView.h"
#include "platform/printing/clsPrinter.h"
#include "print/clsFields.h"
#include "print/clsPrintGrid.h"

namespace sandrel {

/// What is printed: the list of a page as it was when it was read.
struct PrintData {
  clsFields Fields;
  std::string Tag;      ///< the page's name, as "ShowNewFiles"
  std::string Caption;  ///< the heading
};

/// All of the sheet but the grid's margins, on both sides.
PrintArea AreaOf(const clsPrintGrid& grid, const clsPaper& paper);

class clsPrintJob {
 public:
  /// How wide columns are at least: all alike, or as the preview has them.
  enum class Widths : std::uint8_t { Even, OfPage };

  /// Starts the document; all must outlive the object. `file` is used where the printer writes one.
  /// Raises what StartDoc does.
  clsPrintJob(clsShell& shell, clsSettings& settings, clsPrinter& printer, const std::string& title,
              const std::string& file);

  clsPrintDevice& Device() { return m_document->Device(); }
  /// The list's cells, broken for this document's font.
  clsFields LoadFields(const ListView& list);
  /// Prints all pages and ends the document. Their number; what finds no room is told. Raises what
  /// the grid and the printer do, and nothing is printed then.
  int Print(const PrintData& data, Widths widths);

 private:
  clsShell& m_shell;
  clsPrinter& m_printer;
  clsPrintGrid m_grid;
  std::unique_ptr<clsPrintDocument> m_document;
};

}  // namespace sandrel
