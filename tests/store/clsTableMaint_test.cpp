#include "store/clsTableMaint.h"

#include <gtest/gtest.h>

#include <fstream>

#include "common/clsFileWorks.h"
#include "platform/dao/Workspace.h"
#include "support/NumberOf.h"
#include "support/Rows.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

class clsTableMaintTest : public testing::Test {
 protected:
  TempFolder m_temp;
  std::string m_path = m_temp.Of("x.zqd");
  clsTableMaint m_maint;
};

TEST_F(clsTableMaintTest, ExistingFilesStayAndExistingTablesAreEmptied) {
  EXPECT_EQ(ReadSnapshotLevel(m_path), SnapshotLevel::None);
  EXPECT_TRUE(Raises(errnum::DatabaseNotFound, "clsTableMaint.CreateStatsTableErr: ", [&] {
    m_maint.CreateStatsTable(m_path, "tblStats");
  }));
  m_maint.DeleteDatabase(m_path);
  m_maint.CreateDatabase(m_path);
  m_maint.CreateTempRegValueTable(m_path, "tblRegValue");
  Rows(m_path, "INSERT INTO tblRegValue VALUES (1, 'n', 'v', 1)");
  m_maint.CreateDatabase(m_path);
  EXPECT_EQ(Rows(m_path, "SELECT * FROM tblRegValue").size(), 1U);
  EXPECT_EQ(ReadSnapshotLevel(m_path), SnapshotLevel::Before);
  m_maint.CreateTempRegValueTable(m_path, "tblRegValue");
  EXPECT_TRUE(Rows(m_path, "SELECT * FROM tblRegValue").empty());
  m_maint.CreateTempRegValueTable(m_path, "tblRegValue2");
  EXPECT_EQ(ReadSnapshotLevel(m_path), SnapshotLevel::BeforeAndAfter);
  std::ofstream(m_path + "-journal") << "left by a killed run";
  m_maint.DeleteDatabase(m_path);
  EXPECT_FALSE(clsFileWorks::FileExists(m_path) || clsFileWorks::FileExists(m_path + "-journal"));
  std::ofstream(m_path) << std::string(3000, 'x');
  EXPECT_EQ(ReadSnapshotLevel(m_path), SnapshotLevel::None);
}

// Every key compares text without regard to case, refuses what it must refuse, and no more.
TEST_F(clsTableMaintTest, KeysAndRulesOfTheTables) {
  m_maint.CreateDatabase(m_path);
  m_maint.CreateTempPathTable(m_path, "tblPaths");
  m_maint.CreateTempFileTable(m_path, "tblFiles");
  m_maint.CreateTempRegKeyTable(m_path, "tblRegKey");
  m_maint.CreateTempIniSectionTable(m_path, "tblIniSections");
  m_maint.CreateTempIniValueTable(m_path, "tblIniValues");
  m_maint.CreateNewOrOldIniEntryTable(m_path, "tblNewIniEnteries");
  m_maint.CreateChangedIniEntryTable(m_path, "tblChangedIniEnteries");
  dao::Workspace workspace("Test");
  const auto database = workspace.OpenDatabase(m_path);
  using Fields = std::vector<std::pair<const char*, dao::Value>>;
  const auto ini = [](const char* path, const char* file, const char* section, const char* key) {
    return Fields{{"PathName", path}, {"FileName", file}, {"Section", section}, {"Parameter", key}};
  };
  const auto entry = [](const char* key, int occurrence) {
    return Fields{{"SectionId", 1}, {"Parameter", key}, {"Occurance", occurrence}};
  };
  const struct {
    const char* Table;
    Fields Record;
    std::int32_t Error;
  } cases[] = {
      {"tblPaths", {{"PathName", "C:\\A\\"}}, 0},
      {"tblPaths", {{"PathName", "c:\\a\\"}}, errnum::DuplicateKey},
      {"tblPaths", {{"PathName", ""}}, errnum::ZeroLength},
      {"tblPaths", {}, errnum::FieldRequired},
      {"tblPaths", {{"PathName", std::string(32768, 'x')}}, errnum::FieldTooLong},
      {"tblFiles", {{"PathId", 1}, {"FileName", ""}, {"Size", std::int64_t{1} << 40}}, 0},
      {"tblFiles", {{"PathId", 1}, {"FileName", ""}}, errnum::DuplicateKey},
      {"tblRegKey", {{"Hive", 1}, {"Branch", ""}}, 0},
      {"tblRegKey", {{"Hive", 1}, {"Branch", "S"}}, 0},
      {"tblRegKey", {{"Hive", 1}, {"Branch", "s"}}, errnum::DuplicateKey},
      {"tblIniSections", {{"FileId", 1}, {"Section", "Fonts"}}, 0},
      {"tblIniSections", {{"FileId", 1}, {"Section", "FONTS"}}, errnum::DuplicateKey},
      {"tblIniSections", {{"FileId", 1}, {"Section", ""}}, errnum::ZeroLength},
      {"tblIniValues", entry("p", 0), 0},
      {"tblIniValues", entry("P", 0), errnum::DuplicateKey},
      {"tblIniValues", entry("p", 1), 0},
      {"tblNewIniEnteries", ini("p", "", "s", "p"), 0},
      {"tblNewIniEnteries", ini("p", "", "s", "p"), 0},
      {"tblChangedIniEnteries", ini("p", "f", "s", "p"), 0},
      {"tblChangedIniEnteries", ini("P", "F", "S", "P"), errnum::DuplicateKey},
  };
  for (const auto& row : cases) {
    const auto add = [&] {
      const auto records = database->OpenRecordset(row.Table, dao::RecordsetType::Table);
      records->AddNew();
      for (const auto& [name, value] : row.Record) records->Set(name, value);
      records->Update();
    };
    EXPECT_EQ(NumberOf(add), row.Error) << row.Table << " " << &row - cases;
  }
  EXPECT_TRUE(IsWhole(m_path));
}

}  // namespace
}  // namespace sandrel::test
