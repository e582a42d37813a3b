#include "snapshot/clsSetupRecords.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>

#include "Places.h"
#include "support/NumberOf.h"
#include "support/SnapshotFixture.h"

namespace sandrel::test {
namespace {

class clsSetupRecordsTest : public SnapshotFixture {
 protected:
  void MakeSetup() {
    std::filesystem::create_directories(m_home.Path());
    const std::string script = SANDREL_SCRIPTS "/make-setup-records '" + Setup() + "'";
    ASSERT_EQ(std::system((script + " sample.dll other.dll off.dll none.dll").c_str()), 0);
    Rows(Setup(), "UPDATE FileList SET BeforeCount = 7, AfterCount = 7, WriteOrDelete = -1");
    Rows(Setup(), "UPDATE FileList SET \"On\" = 0 WHERE Name = 'off.dll'");
  }
  void Counts(int sample, int other) {
    const auto line = [](const char* name, int count) {
      return "\"C:\\\\windows\\\\system32\\\\" + std::string(name) +
             "\"=dword:" + fmt::format("{:08x}", count) + "\n";
    };
    m_sample.SetSystemReg(SampleMachine::SystemKeys() +
                          "[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\SharedDLLs] 1\n" +
                          line("sample.dll", sample) + line("other.dll", other) +
                          line("off.dll", other));
    m_machine->CloseRegistry();
  }
  Lines List() {
    return Rows(Setup(),
                "SELECT Name, BeforeCount, AfterCount, WriteOrDelete, FileVersion FROM "
                "FileList");
  }
  std::string Setup() const { return m_records.DatabasePath(); }

  clsSetupRecords m_records{m_shell, m_settings, m_home, *m_machine};
};

TEST_F(clsSetupRecordsTest, CountsThatMoveAddTheirRecords) {
  EXPECT_EQ(NumberOf([&] { m_records.ProcessSetupFiles(false); }), errnum::DatabaseNotFound);
  MakeSetup();
  Counts(1, 2);
  m_records.ProcessSetupFiles(false);
  EXPECT_EQ(List(), (Lines{"sample.dll|1|7|0|", "other.dll|2|7|0|", "off.dll|7|7|-1|",
                           "none.dll|7|7|-1|"}));
  Before();
  Counts(3, 2);
  m_records.ProcessSetupFiles(true);
  EXPECT_EQ(List()[0] + " " + List()[1], "sample.dll|1|3|0| other.dll|2|2|0|");
  Counts(2, 1);
  m_records.ProcessSetupFiles(true);
  EXPECT_EQ(List()[0] + " " + List()[1], "sample.dll|1|2|-1|1.2.3.4 other.dll|2|1|-1|");

  After();
  m_shell.State.AnalysisPath = m_analysisPath;
  const std::string values = "-2147483646, 'Software\\Acme', ";
  Rows(Setup(), "INSERT INTO tblsample_dll VALUES (1, 2, " + values +
                    "'dir', '$(WinDir)  \\x $(other)', 1, '2.10', '2.9')");
  Rows(Setup(), "INSERT INTO tblsample_dll VALUES (9, 9, " + values +
                    "'old', 'new text', 1, '2.9', "
                    "'2.10')");
  Rows(Setup(),
       "INSERT INTO tblother_dll VALUES (2, 1, " + values + "'$(winsysdir)', 'v', 1, NULL, NULL)");
  Rows(m_analysisPath, "INSERT INTO tblNewRegistryEnteries VALUES (" + values + "'dir', 'x', 3)");
  Rows(m_analysisPath, "INSERT INTO tblNewRegistryEnteries VALUES (" + values + "'old', 'y', 3)");
  Rows(Setup(), "UPDATE FileList SET WriteOrDelete = 0 WHERE Name LIKE 'o%f%' OR Name LIKE 'n%'");
  m_records.UpdateSetupTables();
  EXPECT_EQ(Analysis("SELECT ValueName, Value, ValueType FROM tblNewRegistryEnteries WHERE Branch "
                     "= 'Software\\Acme' ORDER BY ValueName"),
            (Lines{"dir|C:\\windows\\x other|1", "old|y|3"}));
  EXPECT_EQ(Analysis("SELECT ValueName, Value FROM tblDeletedRegistryEnteries WHERE Branch = "
                     "'Software\\Acme'"),
            (Lines{"C:\\windows\\system32|v"}));

  // Again: its macros spell the row that was added, and that is no error.
  m_records.UpdateSetupTables();
  EXPECT_EQ(Analysis("SELECT count(*) FROM tblDeletedRegistryEnteries"), Lines{"1"});
  EXPECT_FALSE(m_shell.Has("error"));

  // A folder's own text is no macro.
  m_sample.MakeFolder("C:\\$(windir)");
  m_sample.SetSystemReg(
      "[Software\\\\Microsoft\\\\Windows NT\\\\CurrentVersion] "
      "1\n\"SystemRoot\"=\"C:\\\\$(windir)\"\n");
  m_machine->CloseRegistry();
  std::string text = "$($(WINDIR))$(x";
  EXPECT_EQ(m_records.ExpandSetupMacros(text), "C:\\$(windir)x");

  Enable("RemoteRegistry", true);
  Counts(5, 5);
  EXPECT_TRUE(Raises(errnum::InvalidOperation, "remote registry is scanned",
                     [&] { m_records.ProcessSetupFiles(false); }));
  EXPECT_TRUE(Raises(errnum::InvalidOperation, "", [&] { m_records.UpdateSetupTables(); }));
}

TEST_F(clsSetupRecordsTest, ComparesVersionsByTheirParts) {
  EXPECT_TRUE(clsSetupRecords::IsNewerVersion("4.9.0.1", "4.9"));
  EXPECT_FALSE(clsSetupRecords::IsNewerVersion("4.9", "4.9.0.0"));
  EXPECT_FALSE(clsSetupRecords::IsNewerVersion("", "1"));
  EXPECT_TRUE(clsSetupRecords::IsNewerVersion("1", ""));
}

}  // namespace
}  // namespace sandrel::test
