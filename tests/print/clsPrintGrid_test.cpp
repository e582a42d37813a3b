// The grid's layout, with numbers worked out by hand for the recorder's metrics. On its paper with
// margins of 0.5 the grid begins at 24, 24 on the printer and at 48, 48 on a picture, and is 528 x
// 336 pixels large; texts have 4 pixels left and right and 3 above and below. A one-line row is 11
// high and takes 17 with its space, so that 18 of them make a page; its top is 47 (71 on a
// picture).
#include "print/clsPrintGrid.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "support/NumberOf.h"
#include "support/PrintRecorder.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

using test::PrintRecorder;
using testing::ElementsAre;
using testing::IsEmpty;

class PrintGridTest : public testing::Test {
 protected:
  using Cells = std::vector<std::vector<std::string>>;

  void Fill(const Cells& cells) {
    Grid.SetNumColumns(static_cast<int>(cells[0].size()));
    Grid.SetNumRows(static_cast<int>(cells.size()));
    for (Grid.Row = 1; Grid.Row <= Grid.NumRows(); ++Grid.Row) {
      for (Grid.Column = 1; Grid.Column <= Grid.NumColumns(); ++Grid.Column) {
        Grid.SetValue(cells[Grid.Row - 1][Grid.Column - 1]);
      }
    }
  }
  /// Cells with their row and column as text.
  void FillNumbered(int rows, int columns) {
    Cells cells(rows);
    for (int row = 1; row <= rows; ++row) {
      for (int column = 1; column <= columns; ++column) {
        cells[row - 1].push_back(std::to_string(row) + "-" + std::to_string(column));
      }
    }
    Fill(cells);
  }
  bool Print() { return Grid.PrintGrid(Area, Paper, Printer); }
  bool Preview(PageRange range) { return Grid.PrintGrid(Area, Paper, Pictures, 1.0, range); }

  /// What a page holds in short: "first cell..last cell|Page 1".
  static std::string Summary(const PrintRecorder::Page& page) {
    const auto& texts = page.Texts;
    if (texts.size() < 2) return {};
    const std::string cells =
        texts.size() == 2 ? "" : texts.front().Value + ".." + texts[texts.size() - 3].Value;
    return cells + "|" + texts.back().Value;
  }
  static std::vector<std::string> Summaries(const std::vector<PrintRecorder::Page>& pages) {
    std::vector<std::string> all(pages.size());
    std::ranges::transform(pages, all.begin(), Summary);
    return all;
  }

  test::TempFolder Folder;
  clsSettings Settings{Folder.Of("settings.ini")};
  clsPrintGrid Grid{Settings};
  PrintArea Area{0.5F, 0.5F, 5.5F, 3.5F};
  test::PaperRecorder Paper;
  test::PrinterRecorder Printer;
  test::PicturesRecorder Pictures;
};

TEST_F(PrintGridTest, DrawsCellsHeadingAndBoxesOnWholePixels) {
  const std::string word(40, 'x');
  Fill({{"a name", "abc"}, {word, "abc def"}});
  Grid.MinColumnWidths.Item(2).Width = 0.1;
  Grid.Caption = "New files";
  Printer.Mode = ScaleMode::Inches;
  EXPECT_TRUE(Print());
  ASSERT_EQ(Printer.Pages.size(), 1U);
  EXPECT_EQ(Grid.NumPages(), 1);
  EXPECT_EQ(Printer.Mode, ScaleMode::Inches);
  using Text = PrintRecorder::Text;
  // Column 1 is as wide as its word, 240; column 2 as its widest, 18, so that row 2 has two lines.
  EXPECT_THAT(Printer.Pages[0].Texts,
              ElementsAre(Text{"a name", {28, 47, 268, 58}, drawtext::WordBreak},
                          Text{"abc", {276, 47, 294, 58}, drawtext::WordBreak},
                          Text{word, {28, 64, 268, 85}, drawtext::WordBreak},
                          Text{"abc def", {276, 64, 294, 85}, drawtext::WordBreak},
                          Text{"New files", {24, 24, 528, 44}, drawtext::WordBreak},
                          Text{"Page 1", {24, 24, 528, 44}, drawtext::Right}));
  const auto& lines = Printer.Pages[0].Lines;
  ASSERT_EQ(lines.size(), 16U);
  const std::vector<PrintRect> firstBox(lines.begin(), lines.begin() + 4);
  EXPECT_THAT(firstBox, ElementsAre(PrintRect{24, 44, 272, 44}, PrintRect{272, 44, 272, 61},
                                    PrintRect{272, 61, 24, 61}, PrintRect{24, 61, 24, 44}));
  EXPECT_EQ(lines[13], (PrintRect{298, 61, 298, 88}));
}

TEST_F(PrintGridTest, PutsBandsOfColumnsOneAfterTheOtherForEachGroupOfRows) {
  FillNumbered(20, 3);
  Grid.Row = 19, Grid.Column = 2;
  Grid.SetValue(std::string(20, 'x') + " " + std::string(20, 'y'));
  Area.PrintHeight = 353 / 96.0F;  // of row 19 one pixel is missing
  Print();
  EXPECT_THAT(Summaries(Printer.Pages), ElementsAre("1-1..18-2|Page 1", "1-3..18-3|Page 2",
                                                    "19-1..20-2|Page 3", "19-3..20-3|Page 4"));
  for (const auto& page : Printer.Pages) {
    EXPECT_EQ(page.Texts[0].Rect, (PrintRect{28, 47, 219, 58}));
  }
  EXPECT_EQ(Grid.NumPages(), 4);
  // Two columns leave 122 of the 520 pixels; a third one of 118 with 8 of space overhangs by 4.
  for (const auto& [least, pages] : {std::pair{119, 1U}, {120, 2U}}) {
    Fill({{"a", "b", "c"}});
    Grid.MinColumnWidths.Item(3).Width = least / 96.0;
    Printer.Pages.assign(1, {});
    Print();
    EXPECT_EQ(Printer.Pages.size(), pages) << least;
  }
}

TEST_F(PrintGridTest, GivesAFirstRowTheRectangleOfTheRowBeforeAndATallLastOneAnEmptyPage) {
  std::string tall;
  for (int line = 0; line < 35; ++line) tall += std::string(30, 'x') + " ";
  tall.pop_back();
  Fill({{"a"}, {tall}, {"c"}});
  Grid.MaxFieldLength = 2000;
  Print();
  ASSERT_THAT(Summaries(Printer.Pages),
              ElementsAre("a..a|Page 1", tall + ".." + tall + "|Page 2", "c..c|Page 3", "|Page 4"));
  EXPECT_EQ(Printer.Pages[1].Texts[0].Rect, (PrintRect{28, 47, 219, 58}));
  EXPECT_EQ(Printer.Pages[2].Texts[0].Rect, (PrintRect{28, 47, 219, 398}));
  EXPECT_EQ(Printer.Pages[1].Lines[1], (PrintRect{223, 44, 223, 401}));
  EXPECT_THAT(Printer.Pages[3].Lines, IsEmpty());
  EXPECT_EQ(Grid.NumPages(), 4);
}

TEST_F(PrintGridTest, DrawsThePagesOfTheRangeOnPicturesAndCountsTheOthers) {
  FillNumbered(90, 1);
  Grid.Font.Name = "Courier";
  EXPECT_TRUE(Preview({2, 2}));
  EXPECT_EQ(Summary(Pictures.Pictures[0].Pages[0]), "19-1..36-1|Page 2");
  EXPECT_EQ(Pictures.Pictures[0].Pages[0].Texts[0].Rect, (PrintRect{52, 71, 243, 82}));
  EXPECT_EQ(Summary(Pictures.Pictures[1].Pages[0]), "37-1..54-1|Page 3");
  EXPECT_EQ(Pictures.Pictures[1].Font(), Grid.Font);
  EXPECT_THAT(Pictures.Loaded, ElementsAre(1, 2, 3));
  EXPECT_THAT(Pictures.Pictures[2].Pages[0].Texts, IsEmpty());
  EXPECT_EQ(Pictures.Pictures[0].Emptied + Pictures.Pictures[1].Emptied, 2);
  EXPECT_EQ(Grid.NumPages(), 5);

  const int measured = Pictures.Pictures[0].Measured;
  EXPECT_EQ(measured, 90);
  Pictures.Loaded.clear();
  EXPECT_FALSE(Preview({6, 10}));
  EXPECT_THAT(Pictures.Loaded, IsEmpty());
  EXPECT_TRUE(Preview({1, 10}));
  EXPECT_THAT(Pictures.Loaded, ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(Grid.NumPages(), 5);
  EXPECT_EQ(Pictures.Pictures[0].Measured, measured);
  Grid.Row = 90, Grid.Column = 1;
  Grid.SetValue("another");
  Preview({1, 1});
  EXPECT_GT(Pictures.Pictures[0].Measured, measured);
}

TEST_F(PrintGridTest, CorrectsMarginsAndSizesToWhatThePrinterCanPrintOn) {
  Fill({{"a"}});
  Area = {0, 1, 20, 20};
  Print();
  EXPECT_EQ(Area.LeftMargin, 0.25F);
  EXPECT_EQ(Area.PrintWidth, 6.0F);
  EXPECT_EQ(Area.TopMargin, 1.0F);
  EXPECT_EQ(Area.PrintHeight, 3.25F);
  EXPECT_EQ(Printer.Pages[0].Texts[0].Rect.Left, 4);
  EXPECT_EQ(Printer.Pages[0].Texts[1].Rect, (PrintRect{0, 72, 576, 92}));
  Area = {0.1F, 0.25F, 1, 1};
  Preview({1, 1});
  EXPECT_EQ(Area.LeftMargin, 0.0F);
  EXPECT_EQ(Area.TopMargin, 0.25F);
  EXPECT_EQ(Area.PrintWidth, 1.0F);
}

TEST_F(PrintGridTest, ShortensLongCellsForGoodAndNarrowsAColumnWiderThanThePage) {
  Fill({{std::string(300, 'x'), "b"}});
  Print();
  Grid.Row = Grid.Column = 1;
  const std::string shortened = std::string(252, 'x') + "...";
  EXPECT_EQ(Grid.Value(), shortened);
  ASSERT_EQ(Printer.Pages.size(), 2U);
  EXPECT_EQ(Printer.Pages[0].Texts[0].Value, shortened);
  EXPECT_EQ(Printer.Pages[0].Texts[0].Rect, (PrintRect{28, 47, 548, 58}));
  EXPECT_EQ(Printer.Pages[0].Lines[0], (PrintRect{24, 44, 552, 44}));
  EXPECT_EQ(Summary(Printer.Pages[1]), "b..b|Page 2");
}

TEST_F(PrintGridTest, RaisesWhatCannotBePrintedAndPutsTheUnitBack) {
  const auto error = [&] { return test::NumberOf([&] { Print(); }); };
  Printer.Mode = ScaleMode::Inches;
  Fill({{"a"}});
  Printer.LineHeight = 0;
  EXPECT_EQ(error(), -2147207492);
  Printer.LineHeight = 10;
  Area.PrintWidth = 0.05F;
  EXPECT_EQ(error(), errnum::PageTooSmall);
  Area.PrintWidth = 5;
  Grid.SetNumRows(0);
  EXPECT_EQ(error(), errnum::SubscriptOutOfRange);
  Printer.WidthPixels = 0;
  EXPECT_EQ(error(), errnum::PageTooSmall);
  EXPECT_EQ(Printer.Mode, ScaleMode::Inches);
  Grid.Row = 10001;
  EXPECT_EQ(test::NumberOf([&] { Grid.SetValue("x"); }), errnum::SubscriptOutOfRange);
  EXPECT_EQ(test::NumberOf([&] { Grid.SetNumColumns(21); }), errnum::SubscriptOutOfRange);
  EXPECT_EQ(GridScale::Pixels(2.5), 2);
  EXPECT_EQ(GridScale::Pixels(3.5), 4);
  EXPECT_EQ(test::NumberOf([] { GridScale::Pixels(std::numeric_limits<double>::quiet_NaN()); }), 6);
}

TEST_F(PrintGridTest, BreaksWordsThatAreWiderThanAColumn) {
  // 2 inches are 32 characters; a piece has one less, as a wide letter stands before it.
  const auto times = [](int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
  };
  const auto x = [&](int count) { return times(count, "x"); };
  const struct {
    std::string Text, Result;
    ScaleMode Left;
  } cases[] = {
      {"", "", ScaleMode::Inches},
      {x(32) + " " + x(32), x(32) + " " + x(32), ScaleMode::Pixels},
      {x(33), x(31) + " xx", ScaleMode::Inches},
      {x(70), x(31) + " " + x(31) + " " + x(8), ScaleMode::Inches},
      {"a  b " + x(31) + " " + x(62), "a  b " + x(31) + "  " + x(31) + " " + x(31) + " ",
       ScaleMode::Inches},
      {times(40, "\xC3\xBC"), times(31, "\xC3\xBC") + " " + times(9, "\xC3\xBC"),
       ScaleMode::Inches},
  };
  for (const auto& [text, result, left] : cases) {
    Printer.Mode = ScaleMode::Inches;
    EXPECT_EQ(Grid.BreakIfNoSpaceIn(2.0, text, Printer), result);
    EXPECT_EQ(Printer.Mode, left) << text;
  }
  Printer.TextWidthError = errnum::Overflow;
  EXPECT_EQ(Grid.BreakIfNoSpaceIn(2.0, x(70), Printer), x(70));
  EXPECT_EQ(Printer.Mode, ScaleMode::Pixels);
  Printer.TextWidthError = errnum::DeviceIo;
  try {
    Grid.BreakIfNoSpaceIn(2.0, "a", Printer);
    ADD_FAILURE();
  } catch (const clsError& error) {
    EXPECT_EQ(error.Number(), errnum::DeviceIo);
    EXPECT_EQ(error.Source(), "clsPrintGrid.BreakIfNoSpaceIn");
  }
}

TEST_F(PrintGridTest, ScalesAPictureByTheFontThatItTakes) {
  PrintRecorder& picture = Pictures.Pictures[0];
  for (const auto& [zoom, factor] : {std::pair{50, 0.5}, {500, 2.0}, {0, 0.01}}) {
    EXPECT_DOUBLE_EQ(Grid.ScalePicPreviewToPrinterInches(picture, Paper, zoom), factor);
    EXPECT_EQ(picture.WidthPixels, std::lround(624 * factor));
  }
  picture.RoundsFonts = true;  // 4.125 points become 4
  EXPECT_DOUBLE_EQ(Grid.ScalePicPreviewToPrinterInches(picture, Paper, 50), 4 / 8.25);
  EXPECT_EQ(picture.HeightPixels, std::lround(432 * 4 / 8.25));
  Fill({{"a"}});
  for (const auto& [factor, rect] :
       {std::pair{0.5, PrintRect{26, 45, 121, 56}}, {2.0, PrintRect{104, 121, 487, 133}}}) {
    Grid.PrintGrid(Area = {0.5F, 0.5F, 5.5F, 3.5F}, Paper, Pictures, factor, {1, 1});
    EXPECT_EQ(picture.Pages[0].Texts.end()[-3].Rect, rect);
  }
}

TEST_F(PrintGridTest, KeepsAChangedFontInTheSettings) {
  EXPECT_EQ(Grid.Font, PrintFont());
  { const clsPrintGrid unchanged(Settings); }
  EXPECT_EQ(Settings.Keys("PrintGridFont").size(), 6U);
  EXPECT_EQ(Settings.GetSetting("PrintGridFont", "Size"), "8.25");
  const PrintFont font{"Courier", 10.5, true, false, true, false};
  { clsPrintGrid(Settings).Font = font; }
  EXPECT_EQ(clsPrintGrid(Settings).Font, font);
  EXPECT_EQ(Settings.GetSetting("PrintGridFont", "Size"), "10.5");
  EXPECT_EQ(Settings.GetSetting("PrintGridFont", "Bold"), "True");
  Settings.SaveSetting("PrintGridFont", "Size", "-4");
  EXPECT_EQ(clsPrintGrid(Settings).Font.Size, 8.25);
  clsSettings unwritable("/dev/null/settings.ini");
  { clsPrintGrid(unwritable).Font = font; }
}

}  // namespace
}  // namespace sandrel
