// What is printed: the rows of the list on show, as fields, and from there in a grid.
#pragma once

#include <string_view>

#include "common/clsShell.h"
#include "platform/controls/ListView.h"
#include "platform/printing/clsPrintDevice.h"
#include "print/clsFields.h"
#include "print/clsPrintGrid.h"

namespace sandrel::printdata {

/// Headers and rows of the list. Words of more than two inches in the grid's font on `device` get
/// blanks to wrap at. Of rows and columns that no grid has room for, only the first is read, so
/// that the fields tell they are there.
clsFields LoadFields(const ListView& list, const clsPrintGrid& grid, clsPrintDevice& device);

/// What a grid had no room for.
struct Left {
  bool Rows = false;
  bool Columns = false;
};

/// Moves the fields into a grid and sets its size.
Left FillPrintGrid(const clsFields& fields, clsPrintGrid& grid);

/// The same, with narrow columns where the page's own (by `pageTag`, "ShowNewFiles") leave their
/// paper to others.
Left LoadGrid(const clsFields& fields, std::string_view pageTag, clsPrintGrid& grid);

/// Tells the user what is left out; nothing when all fits.
void TellLeftOfPreview(clsShell& shell, Left left);
void TellLeftOfPrint(clsShell& shell, Left left);

}  // namespace sandrel::printdata
