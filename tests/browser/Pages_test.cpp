#include "browser/Pages.h"

#include <gtest/gtest.h>

#include "browser/FormatCell.h"
#include "platform/dao/Workspace.h"
#include "snapshot/Differences.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

StatReader Stats(const char* version, const char* size, const char* attributes) {
  return [=](std::string_view description) -> std::string {
    if (description == "    Version Info Included") return version;
    if (description == "    Size Info Included") return size;
    return description == "    Attribute Info Included" ? attributes : "wrong";
  };
}

// Every statement of every page runs on an analysis, with the columns that its page shows.
TEST(Pages, StatementsGiveThePagesColumns) {
  const test::TempFolder temp;
  const std::string path = temp.Of("x.mdb");
  clsTableMaint maint;
  maint.CreateDatabase(path);
  for (const Difference& difference : Differences) difference.Create(maint, path, difference.Table);
  maint.CreateHiveLookupTable(path, "tblHives");
  maint.CreateValueTypeTable(path, "tblValueTypes");
  maint.CreateStatsTable(path, "tblStats");
  dao::Workspace workspace("Test");
  const auto database = workspace.OpenDatabase(path);
  const auto columns = [&](const PageStatement& statement) {
    const auto rows = database->OpenRecordset(statement.Sql, dao::RecordsetType::Dynaset);
    std::string names;
    for (const dao::Field& field : rows->Fields()) names += (names.empty() ? "" : ",") + field.Name;
    return names;
  };
  const StatReader all = Stats("Yes", "YES", "yes");
  const std::string registry = "Hive,Branch,Value Name,Value,Value Type";
  const std::string ini = "Path Name,File Name,Section,Parameter,Value";
  const std::string files = "Path Name,File Name,Date,Version,Size,Attributes";
  const std::pair<int, std::string> expected[] = {
      {page::NewRegistry, registry},
      {page::ChangedRegistry, "Hive,Branch,Value Name,New Value,Old Value,Value Type"},
      {page::DeletedRegistry, registry},
      {page::NewIniFiles, ini},
      {page::ChangedIniFiles, "Path Name,File Name,Section,Parameter,New Value,Old Value"},
      {page::DeletedIniFiles, ini},
      {page::NewFiles, files},
      {page::ChangedFiles,
       "Path Name,File Name,New Date,Old Date,New Version,Old Version,New Size,Old Size,New "
       "Attributes,Old Attributes"},
      {page::DeletedFiles, files},
      {page::Stats, "Description,Value"},
      {page::AllRegistry, registry},
      {page::AllIniFiles, ini},
      {page::AllFiles, files}};
  for (const auto& [index, names] : expected) {
    const auto statements = PageStatements(index, all);
    EXPECT_EQ(statements.size(), index >= page::AllRegistry ? 3U : 1U);
    for (const PageStatement& statement : statements) EXPECT_EQ(columns(statement), names) << index;
  }
  // The rows of an "All" page tell their own table: new, changed, deleted.
  for (const int index : {page::AllRegistry, page::AllIniFiles, page::AllFiles}) {
    const auto statements = PageStatements(index, all);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(statements[i].Source, index - page::AllRegistry + 3 * i);
  }
  EXPECT_EQ(columns(PageStatements(page::NewFiles, Stats("no", "yes", "no"))[0]),
            "Path Name,File Name,Date,Size");
  EXPECT_TRUE(PageStatements(page::SharedPage, all).empty());
}

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

}  // namespace
}  // namespace sandrel
