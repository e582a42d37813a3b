#include "print/clsPrintData.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/NumberOf.h"
#include "support/PrintRecorder.h"
#include "support/ShellRecorder.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class PrintDataTest : public testing::Test {
 protected:
  void AddColumns(const std::vector<std::string>& headers) {
    for (const std::string& header : headers) List.AddColumn(header, 1000);
  }
  void AddRow(const std::vector<std::string>& texts) {
    std::vector<TextPool::Id> cells(texts.size());
    std::ranges::transform(texts, cells.begin(), [&](auto& text) { return Texts.Intern(text); });
    List.AddRow({static_cast<std::uint32_t>(List.RowCount() + 1), 1}, cells, 0, 0);
  }
  clsFields Load() { return printdata::LoadFields(List, Grid, Device); }
  std::string_view Value(int row, int column) {
    Grid.Row = row;
    Grid.Column = column;
    return Grid.Value();
  }

  test::TempFolder Folder;
  clsSettings Settings{Folder.Of("settings.ini")};
  clsPrintGrid Grid{Settings};
  test::PrinterRecorder Device;
  TextPool Texts;
  ListView List{Texts};
};

TEST_F(PrintDataTest, MovesHeadersAndRowsIntoTheGridWithWideWordsBroken) {
  AddColumns({"Name", "Value"});
  const std::string path(40, 'x');
  AddRow({"a", path});
  AddRow({"b", path});
  AddRow({"folder"});
  Device.Mode = ScaleMode::Inches;
  const clsFields fields = Load();
  EXPECT_EQ(Device.Mode, ScaleMode::Inches);
  EXPECT_EQ(fields.Count(), 7U);
  EXPECT_EQ(fields.Item("1-2").Value, "Value");
  EXPECT_EQ(fields.Item("3-1").Value, "b");
  for (const char* key : {"4-2", "5-1", "0-1", "1-", "11", "1-2 ", ""}) {
    EXPECT_EQ(test::NumberOf([&] { fields.Item(key); }), errnum::InvalidArgument) << key;
  }
  printdata::FillPrintGrid(fields, Grid);
  EXPECT_EQ(Grid.NumRows(), 4);
  EXPECT_EQ(Grid.NumColumns(), 2);
  EXPECT_EQ(Value(3, 2), std::string(31, 'x') + " " + std::string(9, 'x'));
  EXPECT_EQ(Value(4, 1), "folder");
  EXPECT_EQ(Value(4, 2), "");
  List.ClearRows();
  printdata::FillPrintGrid(Load(), Grid);
  EXPECT_EQ(Grid.NumRows(), 1);
  clsFields twice;
  twice.Add(1, 2, "");
  EXPECT_EQ(test::NumberOf([&] { twice.Add(1, 2, ""); }), errnum::KeyInUse);
}

TEST_F(PrintDataTest, NarrowsTheColumnsThatLeaveTheirPaperToOthers) {
  const struct {
    const char* Tag;
    std::vector<std::string> Headers;
    std::vector<double> Widths;
  } cases[] = {
      {"ShowNewRegistry", {"Hive", "Key", "Name", "Value"}, {0.1, 2, 2, 0.1}},
      {"ShowChangedFiles", {"Path", "Old Size", "NEW SIZE", "Date"}, {2, 0.1, 0.1, 2}},
      {"ShowFilteredPage", {"File", "Attributes"}, {2, 0.1}},
      {"ShowStats", {"Size", "Attributes"}, {2, 2}},
  };
  for (const auto& [tag, headers, widths] : cases) {
    List.ClearColumns();
    AddColumns(headers);
    printdata::LoadGrid(Load(), tag, Grid);
    std::vector<double> found;
    for (const clsMinColWidth& width : Grid.MinColumnWidths) found.push_back(width.Width);
    EXPECT_THAT(found, ElementsAreArray(widths)) << tag;
  }
}

TEST_F(PrintDataTest, TakesWhatAGridHasRoomForAndTellsTheUser) {
  test::ShellRecorder shell;
  for (int column = 1; column <= 25; ++column) AddColumns({std::to_string(column)});
  List.BeginUpdate();
  const auto addRow = [&] { AddRow({std::to_string(List.RowCount() + 1), "x"}); };
  while (List.RowCount() < 9999) addRow();
  printdata::Left left = printdata::FillPrintGrid(Load(), Grid);
  EXPECT_FALSE(left.Rows);
  EXPECT_TRUE(left.Columns);
  EXPECT_EQ(Grid.NumColumns(), 20);
  EXPECT_EQ(Value(10000, 1), "9999");
  while (List.RowCount() < 10500) addRow();
  left = printdata::LoadGrid(Load(), "ShowNewRegistry", Grid);
  EXPECT_TRUE(left.Rows);
  EXPECT_EQ(Grid.NumRows(), 10000);
  printdata::TellLeftOfPreview(shell, left);
  printdata::TellLeftOfPrint(shell, {true, false});
  printdata::TellLeftOfPrint(shell, {});
  EXPECT_THAT(shell.Log, ElementsAre("ask: Only the first 10000 items will be displayed",
                                     "ask: Only the first 20 columns will be displayed",
                                     "ask: Only the first 9999 items will be printed"));
}

}  // namespace
}  // namespace sandrel
