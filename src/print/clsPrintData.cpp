#include "print/clsPrintData.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <utility>

#include "common/text.h"

namespace sandrel::printdata {
namespace {

constexpr double WrapWidth = 2.0;    // inches; wider words get blanks
constexpr double NarrowWidth = 0.1;  // inches; of columns that leave their paper to others

bool Holds(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

/// True for the columns of a file page that are short and many.
bool IsFileDetail(std::string_view header) {
  static constexpr std::array Details = {"size",           "attributes", "old size",
                                         "old attributes", "new size",   "new attributes"};
  return std::ranges::find(Details, text::Lower(header)) != Details.end();
}

Left SetSize(const clsFields& fields, clsPrintGrid& grid) {
  grid.SetNumColumns(std::min(fields.Columns(), clsPrintGrid::MaxColumns));
  grid.SetNumRows(std::min(fields.Rows(), clsPrintGrid::MaxRows));
  return {grid.NumRows() < fields.Rows(), grid.NumColumns() < fields.Columns()};
}

void CopyCells(const clsFields& fields, clsPrintGrid& grid) {
  for (int row = 1; row <= grid.NumRows(); ++row) {
    for (int column = 1; column <= grid.NumColumns(); ++column) {
      const clsField* field = fields.Find(row, column);
      grid.Row = row;
      grid.Column = column;
      grid.SetValue(field == nullptr ? std::string_view() : std::string_view(field->Value));
    }
  }
}

void TellLeft(clsShell& shell, std::string text) {
  shell.Ask({std::move(text), "Sandrel Manager Message", Buttons::Ok, BoxIcon::Information});
}

std::string ColumnsText(const char* done) {
  return "Only the first " + std::to_string(clsPrintGrid::MaxColumns) + " columns will be " + done;
}

}  // namespace

clsFields LoadFields(const ListView& list, const clsPrintGrid& grid, clsPrintDevice& device) {
  const clsScaleModeGuard guard(device);
  const std::size_t columns =
      std::min<std::size_t>(list.Columns().size(), std::size_t{clsPrintGrid::MaxColumns} + 1);
  const std::size_t rows = std::min<std::size_t>(list.RowCount(), clsPrintGrid::MaxRows);
  clsFields fields;
  fields.Reserve((rows + 1) * columns);
  for (std::size_t column = 0; column < columns; ++column) {
    fields.Add(1, static_cast<int>(column) + 1, list.Columns()[column].Text);
  }
  std::unordered_map<TextPool::Id, std::string> broken;
  for (std::size_t row = 0; row < rows; ++row) {
    const auto cells = list.Cells(row);
    const std::size_t filled = cells.size() > 1 ? columns : std::min<std::size_t>(columns, 1);
    for (std::size_t column = 0; column < filled; ++column) {
      const TextPool::Id id = column < cells.size() ? cells[column] : TextPool::Empty;
      const auto [text, isNew] = broken.try_emplace(id);
      if (isNew) {
        text->second = grid.BreakIfNoSpaceIn(WrapWidth, std::string(list.Texts().Text(id)), device);
      }
      fields.Add(static_cast<int>(row) + 2, static_cast<int>(column) + 1, text->second);
    }
  }
  return fields;
}

Left FillPrintGrid(const clsFields& fields, clsPrintGrid& grid) {
  const Left left = SetSize(fields, grid);
  CopyCells(fields, grid);
  return left;
}

Left LoadGrid(const clsFields& fields, std::string_view pageTag, clsPrintGrid& grid) {
  const Left left = SetSize(fields, grid);
  const std::string tag = text::Lower(pageTag);
  if (Holds(tag, "registry") && grid.NumColumns() > 0) {
    grid.MinColumnWidths.Item(1).Width = NarrowWidth;
    grid.MinColumnWidths.Item(grid.NumColumns()).Width = NarrowWidth;
  }
  if (Holds(tag, "files") || Holds(tag, "filteredpage")) {
    for (int column = 1; column <= grid.NumColumns(); ++column) {
      const clsField* header = fields.Find(1, column);
      if (header != nullptr && IsFileDetail(header->Value)) {
        grid.MinColumnWidths.Item(column).Width = NarrowWidth;
      }
    }
  }
  CopyCells(fields, grid);
  return left;
}

void TellLeftOfPreview(clsShell& shell, Left left) {
  if (left.Rows) {
    TellLeft(shell, "Only the first " + std::to_string(clsPrintGrid::MaxRows) +
                        " items will be displayed");
  }
  if (left.Columns) TellLeft(shell, ColumnsText("displayed"));
}

void TellLeftOfPrint(clsShell& shell, Left left) {
  // The header takes one of the grid's rows.
  if (left.Rows) {
    TellLeft(shell, "Only the first " + std::to_string(clsPrintGrid::MaxRows - 1) +
                        " items will be printed");
  }
  if (left.Columns) TellLeft(shell, ColumnsText("printed"));
}

}  // namespace sandrel::printdata
