#include "scan/clsScanDrive.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "config/modFilePattern.h"
#include "support/ScanFixture.h"
#include "support/Unprivileged.h"

namespace sandrel::test {
namespace {

class clsScanDriveTest : public ScanFixture {
 protected:
  clsScanDriveTest() {
    m_maint.CreateTempPathTable(m_path, "tblPaths");
    m_maint.CreateTempFileTable(m_path, "tblFiles");
    m_maint.CreateTempFileTable(m_path, "tblFiles2");
    m_maint.CreateTempIniSectionTable(m_path, "tblIniSections");
    m_maint.CreateTempIniValueTable(m_path, "tblIniValues");
    m_maint.CreateTempIniValueTable(m_path, "tblIniValues2");
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

  void Exclude(const Lines& entries) {
    int number = 0;
    for (const std::string& entry : entries)
      m_settings.SaveSetting("ExcludeFiles", std::to_string(++number), entry);
    const auto scanner = Scanner(true);
    scanner->StartDBTransaction(true);
    scanner->DeleteExcludes();
    scanner->CommitDBTransaction(true);
  }

  void WriteFiles(std::initializer_list<const char*> files) {
    for (const char* file : files) m_sample.WriteFile(file, "");
  }
  Lines Files(const std::string& table = "tblFiles") {
    return Rows("SELECT PathName || FileName FROM " + table +
                " f JOIN tblPaths p ON p.Id = f.PathId ORDER BY 1 COLLATE NOCASE");
  }
  std::string File(const std::string& name, const std::string& fields) {
    return Cell("SELECT " + fields + " FROM tblFiles WHERE FileName = '" + name + "'");
  }
};

const std::string Details = "Date, Version, Size, Attributes";

TEST_F(clsScanDriveTest, RecordsFoldersFilesAndDetails) {
  m_settings.SaveSetting("Enabled", "VersionInfo", "1");
  WriteFiles({"C:\\A\\.hidden\\never.txt", "C:\\A\\.dotfile", "C:\\B\\.hidden\\in.txt"});
  m_settings.SaveSetting("Enabled", "HiddenFolders", "0");
  m_sample.WriteFile("C:\\A\\one.txt", "12345");
  m_sample.MakeFolder("C:\\A\\empty\\deeper");
  m_sample.WriteProgram("C:\\A\\p.dll", 0x0001FFFF, 0x80000005);
  m_sample.WriteProgram("C:\\A\\long.dll", 0x8000FFFF, 0x8000FFFF);
  m_sample.SetTime("C:\\A\\one.txt", 1000000000);
  Walk("C:\\a");
  EXPECT_EQ(Files(), (Lines{"C:\\a\\.dotfile", "C:\\a\\empty\\", "C:\\a\\empty\\deeper\\",
                            "C:\\a\\long.dll", "C:\\a\\one.txt", "C:\\a\\p.dll"}));
  EXPECT_EQ(File("one.txt", Details), "2001-09-09 01:46:40||5|32");
  EXPECT_EQ(File(".dotfile", "Attributes"), "34");
  // The high half of a version word is its signed value divided by 65535.
  EXPECT_EQ(File("p.dll", "Version"), "2.65535.-32768.5");
  EXPECT_EQ(File("", Details), "NULL|NULL|NULL|NULL");
  // A version's text that is too long costs that detail alone.
  EXPECT_EQ(File("long.dll", "Version, Size > 0"), "NULL|1");
  EXPECT_EQ(m_leftOut.Of(LeftOut::LongVersion), 1U);

  EXPECT_EQ(m_leftOut.Of(LeftOut::HiddenFolder), 1U);
  m_settings.SaveSetting("Enabled", "HiddenFolders", "1");
  Walk("C:\\B");
  EXPECT_EQ(File("in.txt", "Size"), "0");

  for (const char* off : {"VersionInfo", "SizeInfo", "AttributeInfo"})
    m_settings.SaveSetting("Enabled", off, "no");
  Walk("C:\\Program Files\\");
  EXPECT_EQ(File("readme.txt", "Version, Size, Attributes"), "NULL|NULL|NULL");
}

TEST_F(clsScanDriveTest, AFileThatVanishesMeanwhileKeepsItsRow) {
  m_sample.WriteFile("C:\\A\\gone.ini", "[s]\na=1\n");
  m_events = [&] { m_sample.Remove("C:\\A\\gone.ini"); };  // between the search and the details
  Walk("C:\\A");
  EXPECT_EQ(File("gone.ini", "Date, Size"), "NULL|NULL");
  EXPECT_EQ(m_leftOut.Of(LeftOut::UnreadableIni), 1U);
}

// Opening the store's file past the engine and closing it again would drop the engine's locks on
// it.
TEST_F(clsScanDriveTest, DoesNotOpenItsOwnDatabase) {
  m_settings.SaveSetting("Enabled", "VersionInfo", "1");
  m_sample.WriteFile("C:\\A\\other.ini", "[s]\nk=1\n");
  std::filesystem::create_hard_link(m_path, m_sample.HostPath("C:\\A\\Own.ini"));
  bool free = false;
  m_events = [&] { free = free || IsFree(m_path); };
  Walk("C:\\A");
  EXPECT_FALSE(free);
  EXPECT_EQ(Rows("SELECT FileName, Version FROM tblFiles ORDER BY Id"),
            (Lines{"Own.ini|", "other.ini|"}));
  EXPECT_EQ(Cell("SELECT count(*) FROM tblIniValues"), "1");
}

// Every real machine has such folders and files: they are left out, told, and end nothing.
TEST_F(clsScanDriveTest, WhatCanNotBeReadIsLeftOutWithItsReason) {
  m_settings.SaveSetting("Enabled", "VersionInfo", "1");
  WriteFiles({"C:\\A\\a.txt", "C:\\A\\closed\\f.txt", "C:\\A\\named\\f.txt",
              "C:\\A\\named\\sub\\f.txt", "C:\\A\\no.dll", "C:\\A\\no.ini", "C:\\A\\z\\f.txt"});
  const Unprivileged user({m_sample.Folder(), m_temp.Path()});
  for (const auto& [path, mode] :
       {std::pair{"closed", 0}, {"named", 0400}, {"no.dll", 0}, {"no.ini", 0}}) {
    std::filesystem::permissions(m_sample.HostPath(std::string("C:\\A\\") + path),
                                 std::filesystem::perms(mode));
  }
  Walk("C:\\A");
  EXPECT_EQ(Files(), (Lines{"C:\\A\\a.txt", "C:\\A\\named\\f.txt", "C:\\A\\no.dll", "C:\\A\\no.ini",
                            "C:\\A\\z\\f.txt"}));
  EXPECT_EQ(File("no.dll", "Version, Size"), "NULL|0");
  Lines told;
  for (const LeftOutItem& item : m_leftOut.Items()) {
    told.push_back(item.Path + item.Name + ": " + item.Reason());
  }
  const std::string denied = ": Permission denied";
  EXPECT_THAT(told, testing::UnorderedElementsAre("C:\\A\\closed\\: unreadable folder" + denied,
                                                  "C:\\A\\named\\sub\\: unreadable folder" + denied,
                                                  "C:\\A\\named\\f.txt: unreadable file" + denied,
                                                  "C:\\A\\no.dll: unreadable file" + denied,
                                                  "C:\\A\\no.ini: unreadable file" + denied,
                                                  "C:\\A\\no.ini: unreadable INI file" + denied));
  for (const char* path : {"closed", "named"}) {
    std::filesystem::permissions(m_sample.HostPath(std::string("C:\\A\\") + path),
                                 std::filesystem::perms::owner_all);
  }
}

TEST_F(clsScanDriveTest, AFolderThatVanishesBeforeItsTurnIsNoFault) {
  WriteFiles({"C:\\A\\1\\f.txt", "C:\\A\\2\\f.txt"});
  int events = 0;
  m_events = [&] {
    if (++events == 3) m_sample.Remove("C:\\A\\2");
  };
  Walk("C:\\A");
  EXPECT_EQ(Files(), (Lines{"C:\\A\\", "C:\\A\\1\\f.txt"}));
  EXPECT_EQ(m_leftOut.Of(LeftOut::VanishedFolder), 1U);
}

TEST_F(clsScanDriveTest, IniEntriesCountTheirOccurrencesAndMustFit) {
  m_sample.WriteFile("C:\\A\\X.Ini",
                     "none=0\n[Fonts]\ndevice=a\nDEVICE=b=c\n=v\nplain\nempty=\n; "
                     "device=x\n[]\nq=1\n[FONTS]\ndevice=d\n");
  m_sample.WriteFile("C:\\A\\x.ini.bak", "[s]\na=1\n");
  const std::string s(300, 's');
  m_sample.WriteFile("C:\\A\\long.ini", "[" + s + "]\na=1\nb=2\n[z]\n" + s +
                                            "=1\nk=" + std::string(70000, 'v') + "\n");
  Walk("C:\\A");
  EXPECT_EQ(Rows("SELECT Section, Parameter, Occurance, Value FROM "
                 "tblIniValues v JOIN tblIniSections s ON s.Id = v.SectionId WHERE Section <> 'z' "
                 "ORDER BY lower(Parameter), Occurance"),
            (Lines{"Fonts||0|v", "Fonts|device|0|a", "Fonts|DEVICE|1|b=c", "Fonts|device|2|d",
                   "Fonts|empty|0|"}));
  EXPECT_EQ(Cell("SELECT Parameter FROM tblIniValues WHERE length(Value) = 70000"), "k");
  EXPECT_EQ(m_leftOut.Of(LeftOut::LongIniEntry), 3U);
}

// A file of both snapshots has one id in both, a new one an id that none has; so its INI sections
// are found under the right file, also when the After snapshot takes the Before snapshot's place.
TEST_F(clsScanDriveTest, AfterWalkKeepsIdentities) {
  for (const char* file : {"C:\\A\\a.ini", "C:\\A\\z.ini"}) m_sample.WriteFile(file, "[s]\nk=1\n");
  Walk("C:\\A");
  m_sample.WriteFile("C:\\A\\NEW\\n.ini", "[s]\nk=9\n");
  m_sample.WriteFile("C:\\A\\m.ini", "[s]\nk=8\n");
  m_sample.Remove("C:\\A\\a.ini");
  std::filesystem::rename(m_sample.HostPath("C:\\A\\z.ini"), m_sample.HostPath("C:\\A\\Z.INI"));
  Walk("C:\\A", true);
  EXPECT_EQ(Rows("SELECT FileName, Id FROM tblFiles ORDER BY Id"), (Lines{"a.ini|1", "z.ini|2"}));
  EXPECT_EQ(Rows("SELECT FileName, f.Id, Value FROM tblFiles2 f JOIN tblIniSections s ON f.Id = "
                 "FileId JOIN tblIniValues2 ON SectionId = s.Id ORDER BY f.Id"),
            (Lines{"Z.INI|2|1", "m.ini|3|8", "n.ini|4|9"}));
  EXPECT_EQ(Cell("SELECT (SELECT count(*) FROM tblIniSections), count(*) FROM tblPaths"), "4|2");
}

TEST_F(clsScanDriveTest, ACancelFinishesTheFolderAndIsAcknowledgedOnce) {
  WriteFiles({"C:\\A\\a\\f.txt", "C:\\A\\b\\f.txt", "C:\\A\\c\\f.txt"});
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
  EXPECT_EQ(Files(), (Lines{"C:\\A\\", "C:\\A\\a\\f.txt"}));
}

TEST_F(clsScanDriveTest, ErrorsNameWhatWasProcessed) {
  EXPECT_TRUE(Raises(errnum::BadFileName,
                     "clsScanDrive.DoXTree: Bad file name or number: C:\\None\\ (No such file or "
                     "directory) - Processing: C:\\None\\",
                     [&] { Walk("C:\\None"); }));
  const auto scanner = Scanner();
  scanner->Database = m_temp.Of("none.zqd");
  EXPECT_EQ(NumberOf([&] { scanner->StartDBTransaction(false); }), errnum::DatabaseNotFound);
  EXPECT_EQ(NumberOf([&] { scanner->DoXTreeFiles("C:\\"); }), errnum::NotSet);
  EXPECT_EQ(NumberOf([&] { scanner->CommitDBTransaction(false); }), 0);
}

TEST_F(clsScanDriveTest, ExclusionsTakeWhatTheyNameFromBothSnapshots) {
  WriteFiles({"C:\\T\\A\\x.txt", "C:\\T\\A\\B\\y.txt", "C:\\T\\AB\\z.txt", "C:\\T\\C\\bat.txt",
              "C:\\T\\C\\BIT.TXT", "C:\\T\\C\\bt.txt", "C:\\T\\C\\D\\bat.txt", "C:\\T\\E\\one.txt",
              "C:\\T\\E\\two.txt", "C:\\T\\F\\G\\h.txt", "C:\\T\\\u00C4rger\\k.txt",
              "C:\\T\\\u00DCber\\m.txt"});
  Walk("C:\\T");
  Walk("C:\\T", true);
  Exclude({"c:\\t\\a\\", "C:\\T\\C\\b?t.txt", "C:\\T\\e\\ONE.txt", "C:\\T\\F\\*.*",
           "C:\\T\\none\\*.*", "C:\\t\\\u00E4RGER\\", "C:\\T\\\u00FCber\\M.TXT"});
  const Lines left = {"C:\\T\\",           "C:\\T\\AB\\z.txt",
                      "C:\\T\\C\\bt.txt",  "C:\\T\\C\\D\\bat.txt",
                      "C:\\T\\E\\two.txt", "C:\\T\\F\\G\\h.txt"};
  EXPECT_EQ(Files(), left);
  EXPECT_EQ(Files("tblFiles2"), left);
  // Of F its files alone went, of A all.
  EXPECT_EQ(Rows("SELECT PathName FROM tblPaths WHERE PathName LIKE 'C:\\T\\F\\' OR PathName LIKE "
                 "'C:\\T\\A\\%'"),
            Lines{"C:\\T\\F\\"});
}

TEST_F(clsScanDriveTest, ExclusionsCanBeOffOrBuiltIn) {
  WriteFiles({"C:\\users\\tester\\Temp\\t.tmp"});
  Walk("C:\\users");
  m_settings.SaveSetting("Enabled", "FileExclude", "0");
  Exclude({});
  EXPECT_EQ(Files().back(), "C:\\users\\tester\\Temp\\t.tmp");
  m_settings.SaveSetting("Enabled", "FileExclude", "1");
  Exclude({});
  EXPECT_EQ(Files().back(), "C:\\users\\tester\\");
  Exclude({"C:\\nowhere\\*.tmp"});  // nothing there to match
  EXPECT_EQ(NumberOf([&] { Exclude({"C:\\users\\tester\\*.tmp"}); }), errnum::InvalidArgument);
}

TEST(MatchFileName, IsThePrograms) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"bat.txt", "b?t.txt", true},   {"BIT.TXT", "b?t.txt", true},
      {"bt.txt", "b?t.txt", false},   {"readme", "read?e.txt", false},
      {"readme.txt", "read?e", true}, {"readme.a.b", "readme.a.b", true},
      {"ab*", "ab*", true},           {"abc", "ab*", false},
      {"zzb*x", "ab*x", false},       {"\u00C4a", "\u00E4?", true},
      {"a.b", "a. b ", true},         {"a", "??", false},
      {"a\U0001F600", "a??", true},   {"a\U0001F600", "a?", false}};
  for (const auto& [name, pattern, matches] : cases)
    EXPECT_EQ(MatchFileName(name, pattern), matches) << name << " " << pattern;
  for (const char* pattern : {"*.txt", "b.*"})
    EXPECT_EQ(NumberOf([&] { MatchFileName("a.txt", pattern); }), errnum::InvalidArgument);
}

}  // namespace
}  // namespace sandrel::test
