#include "snapshot/clsAnalysis.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "browser/Pages.h"
#include "browser/clsPageReader.h"
#include "common/clsFileWorks.h"
#include "support/SnapshotFixture.h"

namespace sandrel::test {
namespace {

class clsAnalysisTest : public SnapshotFixture {};

TEST_F(clsAnalysisTest, NothingChangedGivesNineEmptyTables) {
  Before();
  m_analysis.mnuSnapShotAfter_Click(m_snapshots);  // cancelled in the dialog
  EXPECT_EQ(m_shell.Last(), "choose: Create Analysis Sandrel.mdb");
  m_shell.File = m_analysisPath;
  m_analysis.mnuSnapShotAfter_Click(m_snapshots);
  EXPECT_EQ(m_shell.Last(), "status: Analysis Created");
  EXPECT_EQ(m_shell.State.AnalysisPath, m_analysisPath);
  EXPECT_EQ(Analysis("SELECT Value FROM tblStats WHERE id <= 9"), Lines(9, "0"));
  EXPECT_EQ(Analysis("SELECT count(*) FROM sqlite_master WHERE type = 'table'"), Lines{"12"});
  EXPECT_EQ(Analysis("SELECT Hive, Name FROM tblHives").front(), "-2147483648|HKEY_CLASSES_ROOT");
  EXPECT_EQ(Analysis("SELECT Name FROM tblValueTypes WHERE ValueType = 10"),
            Lines{"RESOURCE_REQUIREMENTS_LIST"});
  EXPECT_TRUE(m_shell.Has("open: " + m_analysisPath));
  EXPECT_TRUE(IsWhole(m_analysisPath) && IsWhole(Working()));
  // A value that appears where none was is no change, and what is excluded is not compared.
  Enable("VersionInfo", true);
  m_sample.WriteFile("C:\\users\\tester\\Temp\\t.tmp", "");
  After();
  EXPECT_EQ(Analysis("SELECT Value FROM tblStats WHERE id <= 9"), Lines(9, "0"));
  EXPECT_EQ(Stat("        C:\\users\\tester\\Temp\\"), "Folder Tree");
}

TEST_F(clsAnalysisTest, TheProgramsOwnFilesAreNoDifferences) {
  m_settings.SaveSetting("ExcludeFiles", "1", "C:\\nothing");  // in the place of the defaults
  const clsHome home(m_sample.HostPath("C:\\Home"));
  clsSnapshots snapshots(m_shell, m_settings, home, m_machine);
  clsAnalysis analysis(m_shell, m_settings, home, m_machine);
  m_sample.MapDrive('m', m_sample.Folder());
  m_settings.SaveSetting("ScanFolders", "1", "c:\\");
  m_settings.SaveSetting("ScanFolders", "2", "M:\\drive_c");
  m_analysisPath = m_sample.HostPath("C:\\Own.mdb");
  std::filesystem::create_directory(home.Path());
  std::ofstream(home.Path() + "/SandrelTemp.lock");
  snapshots.mnuSnapShotBefore_Click();
  for (int i = 0; i < 2; ++i) {  // one that is new, one that takes the place of an older one
    analysis.AfterInto(snapshots, m_analysisPath);
    EXPECT_EQ(Analysis("SELECT Value FROM tblStats WHERE id <= 9"), Lines(9, "0"));
  }
}

TEST_F(clsAnalysisTest, FindsWhatAnInstallationDid) {
  Enable("VersionInfo", true);
  m_sample.WriteFile("C:\\old.txt", "old");
  m_sample.WriteFile("C:\\app.ini", "[Fonts]\ndevice=a\nkeep=1\ngone=1\n[Left]\nx=1\n");
  const std::string head = SampleMachine::SystemKeys() + "[Software\\\\T] 1\n";
  m_sample.SetSystemReg(head + R"("change"="a"
"type"="5"
"gone"="x"
"Path"="p"
)");
  Before();
  m_sample.Remove("C:\\old.txt");
  m_sample.WriteFile("C:\\New\\new.txt", "new");
  m_sample.MakeFolder("C:\\New\\Empty");
  m_sample.WriteProgram("C:\\windows\\system32\\sample.dll", 0x00020000, 0x00000001);
  m_sample.WriteFile("C:\\app.ini", "[FONTS]\ndevice=b\nkeep=1\ndevice=c\nfresh=2\n");
  m_sample.SetTime("C:\\app.ini", 1000000000);
  m_sample.SetSystemReg(head + R"("change"="b"
"type"=dword:00000005
"PATH"="P"
@="new"
[Software\\T\\Sub] 1
"s"="1"
)");
  After();
  EXPECT_EQ(Analysis("SELECT PathName, FileName, Size FROM tblNewFiles ORDER BY 1, 2"),
            (Lines{"C:\\New\\|new.txt|3", "C:\\New\\Empty\\||NULL"}));
  EXPECT_EQ(Analysis("SELECT FileName, OldVersion, NewVersion FROM tblChangedFiles ORDER BY 1"),
            (Lines{"app.ini||", "sample.dll|1.2.3.4|2.0.0.1"}));
  EXPECT_EQ(Analysis("SELECT PathName, FileName, Size FROM tblDeletedFiles"),
            Lines{"C:\\|old.txt|3"});
  EXPECT_EQ(Analysis("SELECT Branch, ValueName, Value FROM tblNewRegistryEnteries ORDER BY 1, 2"),
            (Lines{"Software\\T||new", "Software\\T\\Sub|s|1"}));
  // "Path" and "PATH" are one value, "p" and "P" one text.
  EXPECT_EQ(Analysis("SELECT ValueName, OldValue, NewValue, OldValueType, NewValueType FROM "
                     "tblChangedRegistryEnteries ORDER BY 1"),
            (Lines{"change|a|b|1|1", "type|5|5|1|4"}));
  EXPECT_EQ(Analysis("SELECT Hive, Branch, ValueName, Value FROM tblDeletedRegistryEnteries"),
            Lines{"-2147483646|Software\\T|gone|x"});
  // A further repetition of "device" is no new entry: new and deleted entries don't count
  // repetitions.
  EXPECT_EQ(Analysis("SELECT PathName, FileName, Section, Parameter, Value FROM tblNewIniEnteries"),
            Lines{"C:\\|app.ini|Fonts|fresh|2"});
  EXPECT_EQ(Analysis("SELECT Section, Parameter, OldValue, NewValue FROM tblChangedIniEnteries"),
            Lines{"Fonts|device|a|b"});
  EXPECT_EQ(Analysis("SELECT Section, Parameter, Value FROM tblDeletedIniEnteries ORDER BY 1"),
            (Lines{"Fonts|gone|1", "Left|x|1"}));
  EXPECT_EQ(Analysis("SELECT Value FROM tblStats WHERE id <= 3"), (Lines{"2", "2", "1"}));

  // Two changed repetitions of one parameter have one row; the count is the statement's.
  m_snapshots.mnuSnapShotRollUp_Click();
  m_sample.WriteFile("C:\\app.ini", "[FONTS]\ndevice=d\nkeep=1\ndevice=e\nfresh=2\n");
  After();
  EXPECT_EQ(Analysis("SELECT OldValue, NewValue FROM tblChangedIniEnteries"), Lines{"b|d"});
  EXPECT_EQ(Stat("INI Entries - Changed"), "2");
  EXPECT_TRUE(IsWhole(m_analysisPath) && IsWhole(Working()));
}

// Before, After, Replace, After, After: each analysis is as right as the first.
TEST_F(clsAnalysisTest, ReplacedSnapshotsCompareAsWellAsTheFirst) {
  const std::string fresh = "SELECT FileName, Parameter, Value FROM tblNewIniEnteries ORDER BY 1";
  const std::string gone = "SELECT FileName, Section FROM tblDeletedIniEnteries ORDER BY 2";
  m_sample.WriteFile("C:\\A\\a.ini", "[s]\nk=1\n");
  m_sample.WriteFile("C:\\A\\z.ini", "[s]\nk=1\n");
  Before();
  m_sample.WriteFile("C:\\A\\b.ini", "[s]\nk=b1\n");
  m_sample.Remove("C:\\A\\z.ini");
  After();
  EXPECT_EQ(Analysis(fresh), Lines{"b.ini|k|b1"});
  EXPECT_EQ(Analysis(gone), Lines{"z.ini|s"});
  m_snapshots.mnuSnapShotRollUp_Click();
  m_sample.WriteFile("C:\\A\\a.ini", "[s]\nk=1\nm=a2\n");
  m_sample.WriteFile("C:\\A\\c.ini", "[s]\nk=c2\n[t]\nq=c2\n");
  m_sample.WriteFile("C:\\A\\b.ini", "[s]\nk=b2\n");
  for (int i = 0; i < 2; ++i) {  // a second After of the same pair, over the first
    After();
    EXPECT_EQ(Analysis(fresh + ", 2"), (Lines{"a.ini|m|a2", "c.ini|k|c2", "c.ini|q|c2"}));
    EXPECT_EQ(Analysis("SELECT FileName, OldValue, NewValue FROM tblChangedIniEnteries"),
              Lines{"b.ini|b1|b2"});
    EXPECT_EQ(Analysis(gone), Lines{});
    EXPECT_EQ(Analysis("SELECT FileName FROM tblNewFiles"), Lines{"c.ini"});
  }
  EXPECT_TRUE(IsWhole(Working()));
}

// The entries of an excluded INI file go with it: left behind they would be new in each further
// analysis, and their sections' numbers would pass to new files.
TEST_F(clsAnalysisTest, EntriesOfExcludedFilesAreExcludedToo) {
  m_sample.WriteFile("C:\\zz\\x.ini", "[s]\nk=1\n");
  m_sample.WriteFile("C:\\app.ini", "[s]\nk=1\n");
  m_settings.SaveSetting("ExcludeFiles", "1", "C:\\zz\\");
  m_settings.SaveSetting("ExcludeFiles", "2", "C:\\app.ini");
  Before();
  for (int i = 0; i < 5; ++i) {
    After();
    ASSERT_EQ(Analysis("SELECT Value FROM tblStats WHERE id <= 9"), Lines(9, "0")) << i;
    if (i == 2) m_snapshots.mnuSnapShotRollUp_Click();
  }
  m_sample.WriteFile("C:\\aa\\new.ini", "[s]\nk=1\n");
  After();
  EXPECT_EQ(Analysis("SELECT FileName, Parameter FROM tblNewIniEnteries"), Lines{"new.ini|k"});
}

// Whatever the type of a value and however long a name: each row of a table is a row of its page.
TEST_F(clsAnalysisTest, EveryPageHasTheRowsOfItsTables) {
  std::string registry = SampleMachine::SystemKeys() + "[Software\\\\T] 1\n";
  Before();
  for (const std::string type :
       {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "a", "b", "c", "12345", "ffffffff"}) {
    registry += "\"" + type + "\"=hex(" + type + "):01,02,03,04\n";
  }
  m_sample.SetSystemReg(registry + "\"" + std::string(9000, 'n') + "\"=\"1\"\n");
  std::string deep = "C:\\" + std::string(200, 'd');
  for (int i = 0; i < 10; ++i) deep += "\\" + std::string(200, 'd');
  m_sample.WriteFile(deep + "\\f.ini", "[s]\nk=1\n");
  After();
  const std::pair<int, const char*> pages[] = {{page::NewRegistry, "tblNewRegistryEnteries"},
                                               {page::NewFiles, "tblNewFiles"},
                                               {page::NewIniFiles, "tblNewIniEnteries"}};
  for (const auto& [page, table] : pages) {
    int rows = 0;
    clsPageReader(m_analysisPath)
        .Read(
            page, [](const std::vector<dao::Field>&) {},
            [&](const std::vector<dao::Field>&, const std::vector<dao::Value>&, int) { ++rows; });
    EXPECT_EQ(std::to_string(rows), Analysis(std::string("SELECT count(*) FROM ") + table)[0]);
    EXPECT_GT(rows, 0);
  }
  EXPECT_EQ(
      Analysis(
          "SELECT Name, Value FROM tblNewRegistryEnteries n JOIN tblValueTypes t ON t.ValueType = "
          "n.ValueType WHERE ValueName IN ('b', '12345', 'ffffffff') ORDER BY 1"),
      (Lines{"QWORD|01 02 03 04", "TYPE 0x00012345|01 02 03 04", "TYPE 0xFFFFFFFF|01 02 03 04"}));
  EXPECT_EQ(Analysis("SELECT max(length(PathName)) FROM tblNewFiles"),
            Lines{std::to_string(deep.size() + 1)});
}

// What only one snapshot has seen is no difference; it is told.
TEST_F(clsAnalysisTest, WhatASnapshotLeftOutIsNotCompared) {
  const auto write = [this](const char* folders, const char* keys) {
    for (const char* c = folders; *c != 0; ++c) {
      m_sample.WriteFile(std::string("C:\\") + *c + "\\Sub\\f.ini", "[s]\nk=1\n");
    }
    std::string registry = SampleMachine::SystemKeys();
    for (const char* c = keys; *c != 0; ++c) {
      for (const char* sub : {"", "\\\\Sub"}) {
        registry += std::string("[Software\\\\") + *c + sub + "] 1\n\"v\"=\"1\"\n";
      }
    }
    m_sample.SetSystemReg(registry);
  };
  const auto leaveOut = [this](const char* table) {
    Rows(Working(), std::string("INSERT INTO ") + table + R"( VALUES
      ('Folder', 0, 'C:\a\', '', 'closed'), ('INI entries', 0, 'C:\B\Sub\', 'F.ini', ''),
      ('Key', -2147483646, 'Software\C', '', 'denied'),
      ('Subkeys', -2147483646, 'software\D', '', ''),
      ('Values', -2147483646, 'Software\E', '', ''), ('Key', 0, 'Software\F', '', ''))");
  };
  const auto found = [this](const char* which) {
    const std::string table = std::string("tbl") + which;
    return Analysis("SELECT PathName FROM " + table + "Files UNION ALL SELECT Branch FROM " +
                    table + "RegistryEnteries UNION ALL SELECT PathName || Parameter FROM " +
                    table + "IniEnteries ORDER BY 1");
  };
  const Lines told{"C:\\B\\",          "C:\\B\\Sub\\",  "C:\\G\\",
                   "C:\\G\\Sub\\",     "C:\\G\\Sub\\k", "Software\\D",
                   "Software\\E\\Sub", "Software\\F",   "Software\\F\\Sub"};
  Before();
  leaveOut("tblLeftOut");
  write("ABG", "CDEF");
  After();
  EXPECT_EQ(found("New"), told);
  EXPECT_EQ(Stat("Files - New"), "4");
  EXPECT_EQ(Stat("        C:\\a\\"), "closed");
  EXPECT_EQ(Stat("        HKEY_LOCAL_MACHINE\\Software\\C"), "denied");
  EXPECT_EQ(Stat("    Left Out Of After"), "None");
  EXPECT_EQ(Stat("    Differences Not Compared"), "8");

  m_snapshots.mnuSnapShotRollUp_Click();  // its own left-out things replace those of Before
  for (const char* folder : {"C:\\A", "C:\\B", "C:\\G"}) m_sample.Remove(folder);
  m_sample.SetSystemReg(SampleMachine::SystemKeys());
  ASSERT_TRUE(m_snapshots.AfterSnapshot());
  leaveOut("tblLeftOut2");
  EXPECT_TRUE(m_analysis.CreateViews(m_analysisPath));
  EXPECT_EQ(found("Deleted"), told);
}

// Files can be compared on a machine whose registry isn't there, as long as it isn't scanned.
TEST_F(clsAnalysisTest, AnUnreadableRegistryMattersOnlyWhereItIsScanned) {
  std::filesystem::remove(m_sample.Folder() + "/system.reg");
  Enable("RegScan", false);
  Before();
  m_sample.WriteFile("C:\\new.txt", "");
  After();
  EXPECT_EQ(Analysis("SELECT FileName FROM tblNewFiles"), Lines{"new.txt"});

  // The same with a remote registry; one that can't be read is an error there, never an empty one.
  const SampleMachine far;
  std::filesystem::create_directory(m_temp.Of("net"));
  std::filesystem::create_directory_symlink(far.Folder(), m_temp.Of("net/far"));
  setenv("SANDREL_NETWORK", m_temp.Of("net").c_str(), 1);
  Enable("RegScan", true);
  Enable("RemoteRegistry", true);
  m_settings.SaveSetting("RegScan", "RemoteName", "far");
  Before();
  After();
  EXPECT_EQ(m_shell.Last(), "status: Analysis Created");
  EXPECT_EQ(Select("count(*) FROM tblRegValue2 WHERE Value = 'C:\\windows'"), "1");
  std::ofstream(far.Folder() + "/user.reg") << "no registry";
  After();
  unsetenv("SANDREL_NETWORK");
  EXPECT_TRUE(m_shell.Has("user.reg"));
  EXPECT_EQ(m_shell.Last(), "unload");
}

TEST_F(clsAnalysisTest, ReportsTheSettingsInForce) {
  m_settings.SaveSetting("ScanFolders", "1", "C:\\windows");
  m_settings.SaveSetting("RegScan", "HKEY_USERS", "False");
  m_settings.SaveSetting("ExcludeFiles", "1", "C:\\windows\\temp\\");
  m_settings.SaveSetting("ExcludeFiles", "2", "C:\\windows\\a.txt");
  Before();
  After();
  EXPECT_EQ(
      Cell(m_analysisPath,
           "SELECT group_concat(Description || '=' || Value, char(10)) FROM tblStats WHERE id "
           "> 9"),
      R"( =
Disk Scan Settings=
    Folders Scanned=
        C:\windows=
    Version Info Included=No
    Size Info Included=Yes
    Attribute Info Included=Yes
    Hidden Folders Included=Yes
 =
Registry Scan Settings=
    Hives Scanned=
        HKEY_CLASSES_ROOT=No
        HKEY_CURRENT_CONFIG=Yes
        HKEY_CURRENT_USER=Yes
        HKEY_LOCAL_MACHINE=Yes
        HKEY_USERS=No
 =
File Exclude Settings=
    Files / Folders Excluded=
        C:\windows\temp\=Folder Tree
        C:\windows\a.txt=File(s)
 =
Left Out Of The Snapshots=
    Left Out Of Before=None
    Left Out Of After=None
    Differences Not Compared=0)");
  for (const char* off : {"FileExclude", "DiskScan"}) Enable(off, false);
  Enable("RemoteRegistry", true);
  m_settings.SaveSetting("RegScan", "RemoteName", "box");
  Before();
  After();
  EXPECT_EQ(Stat("    Folders Scanned") + Stat("    Files / Folders Excluded"), "NoneNone");
  EXPECT_EQ(Stat("        \\\\box\\HKEY_USERS"), "No");
  EXPECT_EQ(Stat("        HKEY_LOCAL_MACHINE"), "unfinished hive scan: can't be reached");
}

TEST_F(clsAnalysisTest, ACancelledOrAbortedComparisonLeavesTheOlderFile) {
  std::ofstream(m_analysisPath) << "older";
  m_sample.MakeFolder("C:\\going");
  Before();
  m_shell.OnEvents = [&] {
    if (m_shell.Last() == "status: Creating Analysis...") m_snapshots.ConfirmCancelScan();
  };
  After();
  EXPECT_TRUE(m_shell.Has("Overwrite the existing file?"));
  EXPECT_EQ(m_shell.Last(), "status: Scan Stopped");
  EXPECT_EQ(m_shell.State.AnalysisPath, "");
  EXPECT_EQ(Level(), SnapshotLevel::BeforeAndAfter);

  m_shell.OnEvents = nullptr;
  const std::string elsewhere = m_temp.Of("link.mdb");
  std::filesystem::create_symlink(m_analysisPath, elsewhere);
  m_analysis.AfterInto(m_snapshots, elsewhere);
  EXPECT_TRUE(std::filesystem::is_symlink(elsewhere));
  EXPECT_EQ(Stat("Files - New"), "0");  // written where the link leads
  EXPECT_FALSE(m_shell.State.Scanning);
}

TEST_F(clsAnalysisTest, BadTargetsAreToldBeforeTheScan) {
  Before();
  for (const std::string& target : {m_temp.Path(), m_temp.Of("none/x.mdb"), Working(),
                                    m_temp.Of("home/../home/SandrelTemp.zqd")}) {
    m_shell.Log.clear();
    m_analysis.AfterInto(m_snapshots, target);
    EXPECT_TRUE(m_shell.Has("error 7")) << target;
    EXPECT_FALSE(m_shell.Has("status: Scanning")) << target;
  }
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  EXPECT_TRUE(IsWhole(Working()));
  m_shell.Questions = {Answer::No};
  std::ofstream(m_analysisPath) << "older";
  After();
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  EXPECT_EQ(clsFileWorks::ReadWhole(m_analysisPath), "older");
}

// A refused target or a missing machine ends the command whatever the user answers.
TEST_F(clsAnalysisTest, WhatCanNeverWorkIsNotGoneOnWith) {
  Before();
  After();
  m_shell.Errors = {Answer::Ignore, Answer::Ignore};
  m_shell.OnEvents = [&] { m_shell.State.Scanning = false; };  // a cancel besides
  EXPECT_FALSE(m_analysis.CreateViews(Working()));
  EXPECT_EQ(Level(), SnapshotLevel::BeforeAndAfter);
  clsAnalysis none(m_shell, m_settings, m_home, nullptr);
  EXPECT_FALSE(none.CreateViews(m_analysisPath));
  EXPECT_TRUE(m_shell.Has("There is no machine to look at."));
}

}  // namespace
}  // namespace sandrel::test
