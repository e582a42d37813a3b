#include "scan/clsScanDrive.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "store/clsTableMaint.h"
#include "support/NumberOf.h"
#include "support/Rows.h"
#include "support/SampleMachine.h"

namespace sandrel {

using test::Cell;
using test::NumberOf;
using test::Rows;

namespace {

class clsScanDriveTest : public testing::Test {
 protected:
  clsScanDriveTest() {
    clsTableMaint maint;
    maint.CreateDatabase(m_path);
    maint.CreateTempPathTable(m_path, "tblPaths");
    maint.CreateTempFileTable(m_path, "tblFiles");
    maint.CreateTempFileTable(m_path, "tblFiles2");
    maint.CreateTempIniSectionTable(m_path, "tblIniSections");
    maint.CreateTempIniValueTable(m_path, "tblIniValues");
    maint.CreateTempIniValueTable(m_path, "tblIniValues2");
  }

  std::unique_ptr<clsScanDrive> Scanner(bool after = false) {
    auto scanner = std::make_unique<clsScanDrive>(m_context);
    scanner->Database = m_path;
    scanner->PathTable = "tblPaths";
    scanner->FileTable = after ? "tblFiles2" : "tblFiles";
    scanner->FirstFileTable = after ? "tblFiles" : "";
    scanner->IniSectionTable = "tblIniSections";
    scanner->IniValueTable = after ? "tblIniValues2" : "tblIniValues";
    return scanner;
  }

  void Walk(const std::string& folder, bool after = false) {
    const auto scanner = Scanner(after);
    scanner->StartDBTransaction(false);
    scanner->DoXTreeFiles(folder);
    scanner->CommitDBTransaction(false);
  }

  void Exclude(const std::vector<std::string>& entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      m_settings.SaveSetting("ExcludeFiles", std::to_string(i + 1), entries[i]);
    }
    const auto scanner = Scanner(true);
    scanner->StartDBTransaction(true);
    scanner->DeleteExcludes();
    scanner->CommitDBTransaction(true);
  }

  std::vector<std::string> Files(const std::string& table = "tblFiles") {
    return Rows(m_path, "SELECT PathName || FileName FROM " + table +
                            " f JOIN tblPaths p ON p.Id = f.PathId ORDER BY 1 COLLATE NOCASE");
  }

  test::SampleMachine m_sample;
  test::TempFolder m_temp;
  std::string m_path = m_temp.Of("SandrelTemp.zqd");
  clsSettings m_settings{m_temp.Of("settings.ini")};
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
  clsLeftOut m_leftOut;
  std::function<void()> m_events = [] {};
  clsScanContext m_context{*m_machine, m_settings, m_leftOut, "/nowhere", [this] { m_events(); }};
};

TEST_F(clsScanDriveTest, RecordsFoldersFilesAndDetails) {
  m_settings.SaveSetting("Enabled", "VersionInfo", "1");
  m_sample.WriteFile("C:\\A\\one.txt", "12345");
  m_sample.WriteFile("C:\\A\\.hidden\\never.txt", "");
  m_sample.WriteFile("C:\\A\\.dotfile", "");
  m_sample.MakeFolder("C:\\A\\empty\\deeper");
  m_sample.WriteProgram("C:\\A\\p.dll", 0x0001FFFF, 0x80000005);
  m_sample.SetTime("C:\\A\\one.txt", 1000000000);
  Walk("C:\\a");
  EXPECT_EQ(Files(),
            (std::vector<std::string>{"C:\\a\\.dotfile", "C:\\a\\empty\\", "C:\\a\\empty\\deeper\\",
                                      "C:\\a\\one.txt", "C:\\a\\p.dll"}));
  EXPECT_EQ(Cell(m_path,
                 "SELECT Date, Version, Size, Attributes FROM tblFiles WHERE FileName = 'one.txt'"),
            "2001-09-09 01:46:40||5|32");
  EXPECT_EQ(Cell(m_path, "SELECT Attributes FROM tblFiles WHERE FileName = '.dotfile'"), "34");
  // The high half of a version word is its signed value divided by 65535.
  EXPECT_EQ(Cell(m_path, "SELECT Version FROM tblFiles WHERE FileName = 'p.dll'"),
            "2.65535.-32768.5");
  EXPECT_EQ(
      Cell(m_path, "SELECT Date, Version, Size, Attributes FROM tblFiles WHERE FileName = ''"),
      "NULL|NULL|NULL|NULL");
}

TEST_F(clsScanDriveTest, LeavesDetailsOutThatAreNotWanted) {
  m_settings.SaveSetting("Enabled", "SizeInfo", "0");
  m_settings.SaveSetting("Enabled", "AttributeInfo", "no");
  Walk("C:\\Program Files\\");
  EXPECT_EQ(
      Cell(m_path, "SELECT Version, Size, Attributes FROM tblFiles WHERE FileName = 'readme.txt'"),
      "NULL|NULL|NULL");
}

TEST_F(clsScanDriveTest, AVersionTextThatIsTooLongCostsThatDetailAlone) {
  m_settings.SaveSetting("Enabled", "VersionInfo", "1");
  m_sample.WriteProgram("C:\\A\\odd.dll", 0x8000FFFF, 0x8000FFFF);
  Walk("C:\\A");
  EXPECT_EQ(Cell(m_path, "SELECT Version, Size > 0 FROM tblFiles"), "NULL|1");
  EXPECT_EQ(m_leftOut.Of(LeftOut::LongVersion), 1U);
}

TEST_F(clsScanDriveTest, AFileThatVanishesMeanwhileKeepsItsRow) {
  m_sample.WriteFile("C:\\A\\gone.ini", "[s]\na=1\n");
  m_events = [&] { m_sample.Remove("C:\\A\\gone.ini"); };  // between the search and the details
  Walk("C:\\A");
  EXPECT_EQ(Cell(m_path, "SELECT FileName, Date, Size FROM tblFiles"), "gone.ini|NULL|NULL");
  EXPECT_EQ(m_leftOut.Of(LeftOut::UnreadableIni), 1U);
}

// Opening the store's file past the engine and closing it again would drop the engine's locks on
// it.
TEST_F(clsScanDriveTest, DoesNotOpenItsOwnDatabase) {
  m_settings.SaveSetting("Enabled", "VersionInfo", "1");
  m_sample.WriteFile("C:\\A\\other.ini", "[s]\nk=1\n");
  std::filesystem::create_hard_link(m_path, m_sample.HostPath("C:\\A\\Own.ini"));
  bool free = false;
  m_events = [&] { free = free || test::IsFree(m_path); };
  Walk("C:\\A");
  EXPECT_FALSE(free);
  EXPECT_EQ(Rows(m_path, "SELECT FileName, Version FROM tblFiles ORDER BY Id"),
            (std::vector<std::string>{"Own.ini|", "other.ini|"}));
  EXPECT_EQ(Cell(m_path, "SELECT count(*) FROM tblIniValues"), "1");
}

TEST_F(clsScanDriveTest, AFolderThatVanishesBeforeItsTurnIsNoFault) {
  m_sample.WriteFile("C:\\A\\1\\f.txt", "");
  m_sample.WriteFile("C:\\A\\2\\f.txt", "");
  int events = 0;
  m_events = [&] {
    if (++events == 3) m_sample.Remove("C:\\A\\2");
  };
  Walk("C:\\A");
  EXPECT_EQ(Files(), (std::vector<std::string>{"C:\\A\\", "C:\\A\\1\\f.txt"}));
  EXPECT_EQ(m_leftOut.Of(LeftOut::VanishedFolder), 1U);
}

TEST_F(clsScanDriveTest, IniEntriesCountTheirOccurrences) {
  m_sample.WriteFile("C:\\A\\X.Ini",
                     "none=0\n[Fonts]\ndevice=a\nDEVICE=b=c\n=v\nplain\nempty=\n; "
                     "device=x\n[]\nq=1\n[FONTS]\ndevice=d\n");
  m_sample.WriteFile("C:\\A\\x.ini.bak", "[s]\na=1\n");
  Walk("C:\\A");
  EXPECT_EQ(Rows(m_path,
                 "SELECT Section, Parameter, Occurance, Value FROM tblIniValues v JOIN "
                 "tblIniSections s ON "
                 "s.Id = v.SectionId ORDER BY lower(Parameter), Occurance"),
            (std::vector<std::string>{"Fonts||0|v", "Fonts|device|0|a", "Fonts|DEVICE|1|b=c",
                                      "Fonts|device|2|d", "Fonts|empty|0|"}));
}

TEST_F(clsScanDriveTest, LongIniNamesAreLeftOutAndCounted) {
  m_sample.WriteFile("C:\\A\\x.ini", "[" + std::string(300, 's') + "]\na=1\nb=2\n[ok]\n" +
                                         std::string(300, 'p') +
                                         "=1\nk=" + std::string(70000, 'v') + "\n");
  Walk("C:\\A");
  EXPECT_EQ(Rows(m_path, "SELECT Parameter, length(Value) FROM tblIniValues"),
            std::vector<std::string>{"k|70000"});
  EXPECT_EQ(m_leftOut.Of(LeftOut::LongIniEntry), 3U);
}

// A file of both snapshots has one id in both, a new one an id that none has; so its INI sections
// are found under the right file, also when the After snapshot takes the Before snapshot's place.
TEST_F(clsScanDriveTest, AfterWalkKeepsIdentities) {
  m_sample.WriteFile("C:\\A\\a.ini", "[s]\nk=1\n");
  m_sample.WriteFile("C:\\A\\z.ini", "[s]\nk=1\n");
  Walk("C:\\A");
  m_sample.WriteFile("C:\\A\\NEW\\n.ini", "[s]\nk=9\n");
  m_sample.WriteFile("C:\\A\\m.ini", "[s]\nk=8\n");
  m_sample.Remove("C:\\A\\a.ini");
  std::filesystem::rename(m_sample.HostPath("C:\\A\\z.ini"), m_sample.HostPath("C:\\A\\Z.INI"));
  Walk("C:\\A", true);
  EXPECT_EQ(Rows(m_path, "SELECT FileName, Id FROM tblFiles ORDER BY Id"),
            (std::vector<std::string>{"a.ini|1", "z.ini|2"}));
  EXPECT_EQ(Rows(m_path, "SELECT FileName, Id FROM tblFiles2 ORDER BY Id"),
            (std::vector<std::string>{"Z.INI|2", "m.ini|3", "n.ini|4"}));
  EXPECT_EQ(
      Rows(
          m_path,
          "SELECT FileName, Value FROM tblIniValues2 v JOIN tblIniSections s ON s.Id = v.SectionId "
          "JOIN tblFiles2 f ON f.Id = s.FileId ORDER BY f.Id"),
      (std::vector<std::string>{"Z.INI|1", "m.ini|8", "n.ini|9"}));
  EXPECT_EQ(Cell(m_path, "SELECT count(*) FROM tblIniSections"), "4");
  EXPECT_EQ(Cell(m_path, "SELECT count(*) FROM tblPaths"), "2");
}

TEST_F(clsScanDriveTest, AWalkOverItsOwnRowsAddsNothing) {
  m_sample.WriteFile("C:\\A\\x.ini", "[s]\nk=1\nk=2\n");
  m_sample.MakeFolder("C:\\A\\empty");
  Walk("C:\\A");
  const auto entries =
      Rows(m_path, "SELECT SectionId, Parameter, Occurance, Value FROM tblIniValues");
  Walk("c:\\a\\");
  EXPECT_EQ(Files().size(), 2U);
  EXPECT_EQ(Rows(m_path, "SELECT SectionId, Parameter, Occurance, Value FROM tblIniValues"),
            entries);
}

TEST_F(clsScanDriveTest, ACancelFinishesTheFolderAndIsAcknowledgedOnce) {
  for (const char* folder : {"a", "b", "c"})
    m_sample.WriteFile("C:\\A\\" + std::string(folder) + "\\f.txt", "");
  const auto scanner = Scanner();
  std::vector<int> percents;
  int acknowledged = 0;
  scanner->AckCancel = [&] { ++acknowledged; };
  scanner->PercentComplete = [&](int percent) {
    percents.push_back(percent);
    if (percent == 66) scanner->Cancel();
  };
  scanner->StartDBTransaction(false);
  scanner->DoXTreeFiles("C:\\A");
  scanner->CommitDBTransaction(false);
  EXPECT_EQ(percents, (std::vector<int>{33, 66, 100}));
  EXPECT_EQ(acknowledged, 1);
  EXPECT_EQ(Files(), (std::vector<std::string>{"C:\\A\\", "C:\\A\\a\\f.txt"}));
}

TEST_F(clsScanDriveTest, ErrorsNameWhatWasProcessed) {
  try {
    Walk("C:\\Nowhere");
    FAIL();
  } catch (const clsError& error) {
    EXPECT_EQ(error.Number(), errnum::BadFileName);
    EXPECT_EQ(error.Source(), "clsScanDrive.DoXTree");
    EXPECT_TRUE(error.Description().ends_with(" - Processing: C:\\Nowhere\\"))
        << error.Description();
  }
  const auto scanner = Scanner();
  scanner->Database = m_temp.Of("none.zqd");
  EXPECT_EQ(NumberOf([&] { scanner->StartDBTransaction(false); }), errnum::DatabaseNotFound);
  EXPECT_EQ(NumberOf([&] { scanner->DoXTreeFiles("C:\\"); }), errnum::NotSet);
  EXPECT_EQ(NumberOf([&] { scanner->CommitDBTransaction(false); }), 0);
}

TEST_F(clsScanDriveTest, WhatWasCommittedOnTheWayStays) {
  for (int i = 0; i < 150; ++i) m_sample.MakeFolder("C:\\A\\f" + std::to_string(i));
  {
    const auto scanner = Scanner();
    scanner->StartDBTransaction(false);
    scanner->DoXTreeFiles("C:\\A");  // and then the process is gone, without a commit
  }
  EXPECT_EQ(Cell(m_path, "SELECT count(*) FROM tblPaths"), "101");
  EXPECT_TRUE(test::IsWhole(m_path));
}

TEST_F(clsScanDriveTest, ExclusionsTakeWhatTheyNameFromBothSnapshots) {
  for (const char* file : {"A\\x.txt", "A\\B\\y.txt", "AB\\z.txt", "C\\bat.txt", "C\\BIT.TXT",
                           "C\\bt.txt", "C\\D\\bat.txt", "E\\one.txt", "E\\two.txt", "F\\G\\h.txt",
                           "\u00C4rger\\k.txt", "\u00DCber\\m.txt"}) {
    m_sample.WriteFile("C:\\T\\" + std::string(file), "");
  }
  Walk("C:\\T");
  Walk("C:\\T", true);
  Exclude({"c:\\t\\a\\", "C:\\T\\C\\b?t.txt", "C:\\T\\e\\ONE.txt", "C:\\T\\F\\*.*",
           "C:\\T\\none\\*.*", "C:\\t\\\u00E4RGER\\", "C:\\T\\\u00FCber\\M.TXT"});
  const std::vector<std::string> left = {"C:\\T\\",           "C:\\T\\AB\\z.txt",
                                         "C:\\T\\C\\bt.txt",  "C:\\T\\C\\D\\bat.txt",
                                         "C:\\T\\E\\two.txt", "C:\\T\\F\\G\\h.txt"};
  EXPECT_EQ(Files(), left);
  EXPECT_EQ(Files("tblFiles2"), left);
  EXPECT_EQ(Cell(m_path, "SELECT count(*) FROM tblPaths WHERE PathName LIKE 'C:\\T\\F\\'"),
            "1");  // its files alone went
  EXPECT_EQ(Cell(m_path, "SELECT count(*) FROM tblPaths WHERE PathName LIKE 'C:\\T\\A\\%'"), "0");
}

TEST_F(clsScanDriveTest, ExclusionsCanBeOffOrBuiltIn) {
  m_sample.WriteFile("C:\\users\\tester\\Temp\\t.tmp", "");
  Walk("C:\\users");
  m_settings.SaveSetting("Enabled", "FileExclude", "0");
  Exclude({});
  EXPECT_EQ(Files().back(), "C:\\users\\tester\\Temp\\t.tmp");
  m_settings.SaveSetting("Enabled", "FileExclude", "1");
  Exclude({});
  EXPECT_EQ(Files().back(), "C:\\users\\tester\\");
  EXPECT_EQ(NumberOf([&] { Exclude({"C:\\nowhere\\*.tmp"}); }), 0);  // nothing there to match
  EXPECT_EQ(NumberOf([&] { Exclude({"C:\\users\\tester\\*.tmp"}); }), errnum::InvalidArgument);
}

TEST(MatchFileName, IsThePrograms) {
  const struct {
    const char *Name, *Pattern;
    bool Matches;
  } cases[] = {
      {"bat.txt", "b?t.txt", true},
      {"BIT.TXT", "b?t.txt", true},
      {"bt.txt", "b?t.txt", false},
      {"readme", "read?e", true},
      {"readme.txt", "read?e", true},
      {"readme.a.b", "readme.a.b", true},
      {"readme", "read?e.txt", false},
      {"abc", "ab*", false},
      {"ab*", "ab*", true},
      {"zzb*x", "ab*x", false},
      {"a.txt", "a.t?t", true},
      {"\u00C4a", "\u00E4?", true},
      {"a", "??", false},
      {"a.b", "a. b ", true},
      {"a\U0001F600", "a??", true},
      {"a\U0001F600", "a?", false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(clsScanDrive::MatchFileName(c.Name, c.Pattern), c.Matches)
        << c.Name << " " << c.Pattern;
  EXPECT_EQ(NumberOf([] { clsScanDrive::MatchFileName("a.txt", "*.txt"); }),
            errnum::InvalidArgument);
  EXPECT_EQ(NumberOf([] { clsScanDrive::MatchFileName("a.txt", "b.*"); }), errnum::InvalidArgument);
}

}  // namespace
}  // namespace sandrel
