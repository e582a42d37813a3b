#include "platform/dao/Recordset.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "common/clsError.h"
#include "platform/dao/Workspace.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel::dao {
using test::NumberOf;
using test::TempFolder;

namespace {

class RecordsetTest : public testing::Test {
 protected:
  RecordsetTest() {
    m_workspace.CreateDatabase(m_path);
    m_database = m_workspace.OpenDatabase(m_path);
    TableDef files("tblFiles");
    files.AppendField({"Id", FieldType::Long, 0, true, false, AutoIncrement});
    files.AppendField({"PathId", FieldType::Long, 0, true});
    files.AppendField({"FileName", FieldType::Text, 10, true, true});
    files.AppendField({"Version", FieldType::Text, 5, false, false});
    m_database->TableDefs().Append(files);
    m_database->TableDefs().AppendIndex("tblFiles",
                                        {"PrimaryKey", {"PathId", "FileName"}, true, false});
    m_database->TableDefs().AppendIndex("tblFiles", {"Id", {"Id"}, false, true});
    m_database->TableDefs().AppendIndex("tblFiles", {"Version", {"Version"}, false, false});
  }

  std::unique_ptr<Recordset> Table() {
    return m_database->OpenRecordset("tblFiles", RecordsetType::Table);
  }

  static void Add(Recordset& table, int path, std::string_view name, const Value& version = {}) {
    table.AddNew();
    table.Set("PathId", path);
    table.Set("FileName", name);
    table.Set("Version", version);
    table.Update();
  }

  // A field of every row from the first, or from where the table stands.
  static std::string Walk(Recordset& rows, const char* field, bool first = true) {
    std::string seen;
    if (first) rows.MoveFirst();
    for (; !rows.Eof(); rows.MoveNext()) seen += rows.Get(field).ToText() + ",";
    return seen;
  }
  std::unique_ptr<Recordset> Query(const char* sql) {
    return m_database->OpenRecordset(sql, RecordsetType::Dynaset);
  }

  TempFolder m_temp;
  std::string m_path = m_temp.Of("x.mdb");
  Workspace m_workspace{"Test"};
  std::unique_ptr<Database> m_database;
};

TEST_F(RecordsetTest, AddNewHandsOutIdsBeforeUpdate) {
  auto table = Table();
  EXPECT_TRUE(table->Bof() && table->Eof());
  table->AddNew();
  EXPECT_EQ(table->Get("Id").Integer(), 1);
  table->CancelUpdate();
  Add(*table, 1, "a");
  table->AddNew();
  table->Set("Id", 40);  // a caller may give its own id; later ones go on above it
  table->Set("PathId", 1);
  table->Set("FileName", "b");
  table->Update();
  table->AddNew();
  EXPECT_EQ(table->Get("Id").Integer(), 41);
  table->CancelUpdate();
  EXPECT_EQ(table->RecordCount(), 2);
  auto again = Table();
  again->AddNew();
  EXPECT_EQ(again->Get("id").Integer(), 41);
}

TEST_F(RecordsetTest, FieldsKeepTheirRules) {
  auto table = Table();
  Add(*table, 1, "Name");
  EXPECT_EQ(NumberOf([&] { Add(*table, 1, "nAME"); }), errnum::DuplicateKey);
  table->Set("FileName", "other");  // the record still waits
  table->Update();
  table->AddNew();
  EXPECT_EQ(NumberOf([&] { table->Set("FileName", "12345678901"); }), errnum::FieldTooLong);
  table->Set("FileName", "ääääääääää");  // ten units, twenty bytes
  EXPECT_EQ(NumberOf([&] { table->Set("FileName", "123456789\U0001F600"); }), errnum::FieldTooLong);
  EXPECT_EQ(NumberOf([&] { table->Update(); }), errnum::FieldRequired);
  table->Set("PathId", 2);
  table->Set("Version", "");
  EXPECT_EQ(NumberOf([&] { table->Update(); }), errnum::ZeroLength);
  table->Set("Version", std::string_view("a\0b", 3));
  table->Update();
  EXPECT_EQ(NumberOf([&] { table->Set("Version", "x"); }), errnum::NoAddOrEdit);
  EXPECT_EQ(NumberOf([&] { table->Get("Nothing"); }), errnum::NoSuchItem);
  table->MoveLast();
  EXPECT_EQ(table->Get("Version").Text(), "a\u2400b");
}

TEST_F(RecordsetTest, SeekAndMovesFollowTheIndex) {
  auto table = Table();
  for (const char* name : {"c", "A", "b"}) Add(*table, 2, name);
  Add(*table, 1, "z");
  Add(*table, 3, "");
  EXPECT_EQ(NumberOf([&] { table->Seek("=", {2, "a"}); }), errnum::NoCurrentIndex);
  EXPECT_EQ(NumberOf([&] { table->SetIndex("Missing"); }), errnum::NoSuchItem);
  table->SetIndex("primarykey");
  table->Seek("=", {2, "B"});
  EXPECT_FALSE(table->NoMatch());
  EXPECT_EQ(table->Get("FileName").Text(), "b");
  table->Seek("=", {2, "d"});
  EXPECT_TRUE(table->NoMatch());
  EXPECT_EQ(NumberOf([&] { table->Get("FileName"); }), errnum::NoCurrentRecord);
  table->Seek(">=", {2, "bb"});
  EXPECT_EQ(table->Get("FileName").Text(), "c");
  table->Seek(">=", {2, ""});
  EXPECT_EQ(Walk(*table, "FileName", false), "A,b,c,,");
  EXPECT_EQ(NumberOf([&] { table->MoveNext(); }), errnum::NoCurrentRecord);

  // Deleting while moving: the next move goes on from the deleted record's place.
  table->SetIndex("PrimaryKey");
  table->Seek(">=", {2, ""});
  table->Delete();
  EXPECT_EQ(NumberOf([&] { table->Get("FileName"); }), errnum::NoCurrentRecord);
  EXPECT_FALSE(table->Eof());
  table->MoveNext();
  EXPECT_EQ(table->Get("FileName").Text(), "b");
  table->Edit();
  table->Set("Version", "1");
  table->Update();
  EXPECT_EQ(table->Get("Version").Text(), "1");
  table->MoveFirst();
  EXPECT_EQ(table->Get("FileName").Text(), "z");
  for (int i = 0; i < 4; ++i) {
    table->MoveFirst();
    table->Delete();
  }
  EXPECT_TRUE(table->Bof() && table->Eof());
}

TEST_F(RecordsetTest, AnIndexThatRepeatsVisitsEveryRow) {
  auto table = Table();
  for (int i = 0; i < 5; ++i) Add(*table, i, "f", i < 3 ? "x" : "y");
  table->SetIndex("Version");
  EXPECT_EQ(Walk(*table, "PathId"), "0,1,2,3,4,");
}

// A record that couldn't be written is no current record: what a search finds is.
TEST_F(RecordsetTest, ASearchGivesUpTheRecordThatWaits) {
  auto table = Table();
  table->SetIndex("PrimaryKey");
  Add(*table, 1, "a");
  EXPECT_EQ(NumberOf([&] { Add(*table, 1, "A"); }), errnum::DuplicateKey);
  table->Seek("=", {1, "a"});
  EXPECT_EQ(table->Get("Id").Integer(), 1);
  Add(*table, 1, std::string_view("n\0l", 3));
  table->Seek("=", {1, std::string_view("N\0L", 3)});
  EXPECT_FALSE(table->NoMatch());
}

TEST_F(RecordsetTest, DynasetCountsAndReadsItsRows) {
  const char* others =
      "SELECT tblFiles.FileName AS [File Name], tblFiles.PathId FROM tblFiles WHERE "
      "tblFiles.PathId <> 2;";
  auto rows = Query(others);
  EXPECT_TRUE(rows->Bof() && rows->Eof());
  EXPECT_EQ(rows->RecordCount(), 0);
  auto table = Table();
  for (int i = 1; i <= 4; ++i) Add(*table, i, "f" + std::to_string(i));
  rows = Query(others);
  EXPECT_EQ(rows->Fields()[0].Name, "File Name");
  EXPECT_EQ(rows->RecordCount(), 1);
  rows->MoveLast();
  EXPECT_EQ(rows->Get("File Name").Text(), "f4");
  EXPECT_EQ(rows->RecordCount(), 3);
  EXPECT_EQ(Walk(*rows, "PathId"), "1,3,4,");
  EXPECT_EQ(NumberOf([&] { rows->AddNew(); }), errnum::ReadOnly);
  EXPECT_EQ(NumberOf([&] { Query("SELECT x.Y FROM tblFiles"); }), errnum::TooFewParameters);
  EXPECT_EQ(NumberOf([&] { Query("SELECT x.Y FROM x"); }), errnum::NoSuchTable);
}

TEST_F(RecordsetTest, ExecuteDeletesWhatItNamesAndNothingElse) {
  auto table = Table();
  Add(*table, 1, "x\" OR \"1");
  Add(*table, 1, "y");
  const std::string head = "DELETE tblFiles.* FROM tblFiles WHERE tblFiles.FileName=";
  EXPECT_EQ(NumberOf([&] { m_database->Execute(head + "\"x\" OR \"1\""); }), errnum::SyntaxError);
  EXPECT_EQ(table->RecordCount(), 2);
  // The statement is prepared once; each delete has its own texts, taken as they are.
  const auto deleted = [&](std::string_view name) {
    m_database->Execute(fmt::format("{}\"{}\";", head, name));
    return m_database->RecordsAffected();
  };
  for (const char* name : {"100%", "100x", "it's", "?1", "a\u2400b"}) Add(*table, 2, name);
  Add(*table, 3, "it's");
  EXPECT_EQ(deleted("X\"\" or \"\"1"), 1);
  EXPECT_EQ(deleted("FileName"), 0);  // text, although a column has that name
  EXPECT_EQ(deleted("100%"), 1);
  EXPECT_EQ(deleted("IT'S"), 2);
  EXPECT_EQ(deleted("?1"), 1);
  EXPECT_EQ(deleted(std::string_view("a\0b", 3)), 1);
  EXPECT_EQ(deleted(""), 0);
  EXPECT_EQ(Walk(*table, "FileName"), "y,100x,");
}

}  // namespace
}  // namespace sandrel::dao
