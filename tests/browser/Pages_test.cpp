#include "browser/Pages.h"

#include <gtest/gtest.h>

#include "browser/FormatCell.h"
#include "browser/clsAnalysisFiles.h"

namespace sandrel {
namespace {

TEST(Pages, NamesAndNumbers) {
  for (int i = 0; i < page::FilteredPage; ++i) EXPECT_EQ(PageIndex(PageName(i)), i);
  EXPECT_EQ(PageIndex("ShowFilteredPage"), page::FilteredPage);
  EXPECT_EQ(PageIndex(PageName(page::FilteredPage)), 0);  // its own name has a small p
  for (const int outside : {-1, 15}) EXPECT_EQ(PageName(outside), "");
  EXPECT_EQ(CountedPage("FILES - changed"), page::ChangedFiles);
  EXPECT_EQ(CountedPage("Hives Scanned"), -1);
}

TEST(FormatCell, LettersAndDates) {
  EXPECT_EQ(FormatCell("Old Attributes", 48 + 8 + 64), "FA");
  EXPECT_EQ(FormatCell("New Attributes", {}), "");
  EXPECT_EQ(FormatCell("Size", 33), "33");
  EXPECT_EQ(FormatCell("Value", "2001-09-09 01:46:40"), "2001-09-09 01:46:40");
  EXPECT_EQ(FormatCell("Date", {}), "");
  EXPECT_EQ(FormatCell("New Date", "not a date"), "not a date");
}

TEST(clsAnalysisFiles, CutsLongPathsForTheMenu) {
  const auto fill = [](std::size_t count) { return std::string(count, 'x'); };
  const std::pair<std::string, std::string> paths[] = {
      {"/" + fill(33) + "/b.mdb", "/" + fill(33) + "/b.mdb"},  // 40 characters
      {"/" + fill(34) + "/b.mdb", "..." + fill(31) + "/b.mdb"},
      {"/" + fill(48) + "/ten345.mdb", "..." + fill(26) + "/ten345.mdb"},
      {"/dir/" + fill(36) + ".mdb", "..." + fill(33) + ".mdb"},
      {"/dir/" + fill(37) + ".mdb", "/dir/" + fill(32) + "..."}};
  for (const auto& [path, shown] : paths) EXPECT_EQ(clsAnalysisFiles::ShortPath(path), shown);
}

}  // namespace
}  // namespace sandrel
