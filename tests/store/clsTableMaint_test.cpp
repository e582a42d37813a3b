#include "store/clsTableMaint.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "common/clsFileWorks.h"
#include "platform/dao/Workspace.h"
#include "support/NumberOf.h"
#include "support/Rows.h"
#include "support/TempFolder.h"

namespace sandrel {

using test::NumberOf;
using test::Rows;

namespace {

class clsTableMaintTest : public testing::Test {
 protected:
  test::TempFolder m_temp;
  std::string m_path = m_temp.Of("x.zqd");
  clsTableMaint m_maint;
};

TEST_F(clsTableMaintTest, ExistingFilesStayAndExistingTablesAreEmptied) {
  EXPECT_EQ(ReadSnapshotLevel(m_path), SnapshotLevel::None);
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

TEST_F(clsTableMaintTest, ErrorsCarryTheMethodsName) {
  try {
    m_maint.CreateStatsTable(m_path, "tblStats");
    FAIL();
  } catch (const clsError& error) {
    EXPECT_EQ(error.Number(), errnum::DatabaseNotFound);
    EXPECT_EQ(error.Source(), "clsTableMaint.CreateStatsTableErr");
  }
  EXPECT_EQ(NumberOf([&] { m_maint.CreateDatabase(m_temp.Of("none/x")); }), errnum::InvalidPath);
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
  const auto add = [&](const char* table,
                       std::initializer_list<std::pair<const char*, dao::Value>> fields) {
    return NumberOf([&] {
      const auto records = database->OpenRecordset(table, dao::RecordsetType::Table);
      records->AddNew();
      for (const auto& [name, value] : fields) records->Set(name, value);
      records->Update();
    });
  };
  EXPECT_EQ(add("tblPaths", {{"PathName", "C:\\A\\"}}), 0);
  EXPECT_EQ(add("tblPaths", {{"PathName", "c:\\a\\"}}), errnum::DuplicateKey);
  EXPECT_EQ(add("tblPaths", {{"PathName", ""}}), errnum::ZeroLength);
  EXPECT_EQ(add("tblPaths", {}), errnum::FieldRequired);
  EXPECT_EQ(add("tblPaths", {{"PathName", std::string(256, 'x')}}), errnum::FieldTooLong);
  EXPECT_EQ(add("tblFiles", {{"PathId", 1}, {"FileName", ""}}), 0);
  EXPECT_EQ(add("tblFiles", {{"PathId", 1}, {"FileName", "a"}, {"Size", std::int64_t{1} << 40}}),
            0);
  EXPECT_EQ(add("tblFiles", {{"PathId", 1}, {"FileName", "A"}}), errnum::DuplicateKey);
  EXPECT_EQ(add("tblFiles", {{"FileName", "b"}}), errnum::FieldRequired);
  EXPECT_EQ(add("tblRegKey", {{"Hive", 1}, {"Branch", ""}}), 0);
  EXPECT_EQ(add("tblRegKey", {{"Hive", 1}, {"Branch", "Software"}}), 0);
  EXPECT_EQ(add("tblRegKey", {{"Hive", 1}, {"Branch", "SOFTWARE"}}), errnum::DuplicateKey);
  EXPECT_EQ(add("tblIniSections", {{"FileId", 1}, {"Section", "Fonts"}}), 0);
  EXPECT_EQ(add("tblIniSections", {{"FileId", 1}, {"Section", "FONTS"}}), errnum::DuplicateKey);
  EXPECT_EQ(add("tblIniSections", {{"FileId", 1}, {"Section", ""}}), errnum::ZeroLength);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(add("tblIniValues", {{"SectionId", 1}, {"Parameter", "p"}, {"Occurance", i}}), 0);
    EXPECT_EQ(add("tblNewIniEnteries",
                  {{"PathName", "p"}, {"FileName", ""}, {"Section", "s"}, {"Parameter", "p"}}),
              0);
  }
  EXPECT_EQ(add("tblIniValues", {{"SectionId", 1}, {"Parameter", "P"}, {"Occurance", 1}}),
            errnum::DuplicateKey);
  EXPECT_EQ(add("tblChangedIniEnteries",
                {{"PathName", "p"}, {"FileName", "f"}, {"Section", "s"}, {"Parameter", "p"}}),
            0);
  EXPECT_EQ(add("tblChangedIniEnteries",
                {{"PathName", "P"}, {"FileName", "F"}, {"Section", "S"}, {"Parameter", "P"}}),
            errnum::DuplicateKey);
  EXPECT_TRUE(test::IsWhole(m_path));
}

}  // namespace
}  // namespace sandrel
