#include "platform/dao/Workspace.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel::dao {
using test::NumberOf;
using test::TempFolder;

namespace {

TableDef OneColumn(const std::string& name) {
  TableDef table(name);
  table.AppendField({"Name", FieldType::Text, 20, true, false});
  return table;
}

void Add(Database& database, const char* text, const char* name = "t") {
  auto table = database.OpenRecordset(name, RecordsetType::Table);
  table->AddNew();
  table->Set(0, text);
  table->Update();
}

std::int64_t Count(const std::string& path) {
  Workspace other("Other");
  return other.OpenDatabase(path)->OpenRecordset("t", RecordsetType::Table)->RecordCount();
}

class WorkspaceTest : public testing::Test {
 protected:
  /// The database, made and opened, with the table "t".
  std::unique_ptr<Database> WithTable(const TableDef& table = OneColumn("t")) {
    m_workspace.CreateDatabase(m_path);
    auto database = m_workspace.OpenDatabase(m_path);
    database->TableDefs().Append(table);
    return database;
  }

  TempFolder m_temp;
  std::string m_path = m_temp.Of("x.mdb");
  Workspace m_workspace{"Test"};
};

TEST_F(WorkspaceTest, OpensAndMakesFilesWithTheEnginesErrors) {
  EXPECT_EQ(NumberOf([&] { m_workspace.OpenDatabase(m_path); }), errnum::DatabaseNotFound);
  EXPECT_FALSE(clsFileWorks::FileExists(m_path));
  m_workspace.CreateDatabase(m_path);
  EXPECT_EQ(NumberOf([&] { m_workspace.CreateDatabase(m_path); }), errnum::DatabaseExists);
  EXPECT_EQ(NumberOf([&] { m_workspace.CreateDatabase(m_temp.Of("none/x.mdb")); }),
            errnum::InvalidPath);
  EXPECT_EQ(NumberOf([&] { m_workspace.OpenDatabase(m_temp.Path()); }), errnum::CannotOpen);
  EXPECT_EQ(NumberOf([&] { m_workspace.CommitTrans(); }), errnum::NoTransaction);

  // A file that is no database opens; the first question to it fails as a missing table does.
  const std::string junk = m_temp.Of("junk.mdb");
  std::ofstream(junk) << std::string(5000, 'x');
  auto database = m_workspace.OpenDatabase(junk);
  EXPECT_EQ(NumberOf([&] { database->OpenRecordset("tblStats", RecordsetType::Table); }),
            errnum::NoSuchTable);
  const auto query = [&] {
    database->OpenRecordset("SELECT tblStats.Value FROM tblStats;", RecordsetType::Dynaset);
  };
  EXPECT_EQ(NumberOf(query), errnum::NoSuchTable);
}

TEST_F(WorkspaceTest, OneTransactionSpansTheWorkspace) {
  auto database = WithTable();
  m_workspace.BeginTrans();
  Add(*database, "a");
  // The same file again is the same connection and sees what is pending; another workspace doesn't.
  auto again = m_workspace.OpenDatabase(m_temp.Of("./x.mdb"));
  EXPECT_EQ(again->OpenRecordset("t", RecordsetType::Table)->RecordCount(), 1);
  EXPECT_EQ(Count(m_path), 0);
  again.reset();
  database.reset();  // the transaction holds the connection
  m_workspace.CommitTrans();
  EXPECT_EQ(Count(m_path), 1);

  m_workspace.BeginTrans();
  database = m_workspace.OpenDatabase(m_path);  // opened inside the transaction, so part of it
  Add(*database, "b");
  m_workspace.Rollback();
  EXPECT_EQ(Count(m_path), 1);
  {
    Workspace dropped("Dropped");
    dropped.BeginTrans();
    auto held = dropped.OpenDatabase(m_path);
    Add(*held, "c");
  }
  EXPECT_EQ(Count(m_path), 1);
}

// More than the cache holds. Changes that overflow into the file would lock everybody else out.
TEST_F(WorkspaceTest, ATransactionKeptInMemoryLetsOthersRead) {
  TableDef table("t");
  table.AppendField({"Name", FieldType::Memo});
  WithTable(table);
  Workspace keeping("Keeping", Durability::UntilPowerFails, Overflow::ToMemory);
  auto held = keeping.OpenDatabase(m_path);
  keeping.BeginTrans();
  const std::string large(1'000'000, 'x');
  for (int i = 0; i < 40; ++i) Add(*held, large.c_str());
  EXPECT_EQ(Count(m_path), 0);
  keeping.Rollback();
  EXPECT_EQ(Count(m_path), 0);
}

TEST_F(WorkspaceTest, ALockedFileIsTold) {
  auto database = WithTable();
  Workspace other("Other");
  auto held = other.OpenDatabase(m_path);
  other.BeginTrans();
  Add(*held, "a");
  EXPECT_EQ(NumberOf([&] { Add(*database, "b"); }), errnum::RecordLocked);
  EXPECT_TRUE(DBEngine::IsLocked(m_path));
  other.CommitTrans();
  EXPECT_FALSE(DBEngine::IsLocked(m_path));
  Add(*database, "b");
  EXPECT_EQ(Count(m_path), 2);
}

// A limit on the size of files stands for a full disk: the engine meets it in the middle of a
// write.
TEST_F(WorkspaceTest, AWriteThatFailsLeavesTheFileWholeAndIsKnownToHaveUndoneTheTransaction) {
  TableDef table("t");
  table.AppendField({"Name", FieldType::Memo});
  auto database = WithTable(table);
  Add(*database, "kept");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small{std::filesystem::file_size(m_path) + 20000, before.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  m_workspace.BeginTrans();
  bool rolledBack = false;
  std::int32_t number = 0;
  try {
    const std::string large(100000, 'x');
    for (int i = 0; i < 1000; ++i) Add(*database, large.c_str());
    m_workspace.CommitTrans();
  } catch (const clsError& error) {
    number = error.Number();
    rolledBack = error.RolledBack();
  }
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(number, errnum::DiskError);
  EXPECT_TRUE(rolledBack);
  EXPECT_THROW(m_workspace.CommitTrans(), clsError);  // never claims that the rows are there
  EXPECT_FALSE(m_workspace.InTransaction());
  EXPECT_EQ(Count(m_path), 1);
}

TEST_F(WorkspaceTest, TablesAreRenamedWithTheirIndexes) {
  const auto database = WithTable();
  TableDefs tables = database->TableDefs();
  tables.Append(OneColumn("t2"));
  tables.AppendIndex("t2", {"PrimaryKey", {"Name"}, true, false});
  EXPECT_EQ(NumberOf([&] { tables.Append(OneColumn("T")); }), errnum::TableExists);
  EXPECT_EQ(NumberOf([&] { tables.Rename("t2", "T"); }), errnum::TableExists);
  EXPECT_EQ(NumberOf([&] { tables.Delete("none"); }), errnum::NoSuchItem);
  Add(*database, "kept", "t2");
  tables.Delete("t");
  tables.Rename("t2", "t");
  auto table = database->OpenRecordset("t", RecordsetType::Table);
  table->SetIndex("PrimaryKey");
  table->Seek("=", {"KEPT"});
  EXPECT_FALSE(table->NoMatch());
  // The old name and its index name are free again.
  tables.Append(OneColumn("t2"));
  tables.AppendIndex("t2", {"PrimaryKey", {"Name"}, true, false});
  EXPECT_EQ(tables.Names(), (std::vector<std::string>{"t", "t2"}));
}

TEST(Value, NumbersAndDatesHaveTheirTextForm) {
  EXPECT_EQ(Value(-5).ToText() + Value().ToText(), "-5");
  EXPECT_EQ(Value("12abc").Integer(), 12);
  EXPECT_EQ(DateText(951782400), "2000-02-29 00:00:00");
  EXPECT_EQ(DateText(-62135596801), "0001-01-01 00:00:00");
}

}  // namespace
}  // namespace sandrel::dao
