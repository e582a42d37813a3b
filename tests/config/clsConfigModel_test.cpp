#include "config/clsConfigModel.h"

#include <gtest/gtest.h>

#include <tuple>

#include "support/Rows.h"
#include "support/SampleMachine.h"
#include "support/ShellRecorder.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

constexpr const char* Temp = "C:\\users\\tester\\Temp\\";  // the sample's default exclusion

class clsConfigModelTest : public testing::Test {
 protected:
  void Load(clsConfigModel& model) {
    model.LoadFolders();
    model.LoadOptions();
    model.LoadExcludes();
  }
  /// All that is stored in a section: "key=text" and so on.
  Lines Stored(const char* section) {
    clsSettings settings(m_settings.Path());
    Lines lines;
    for (const std::string& key : settings.Keys(section)) {
      lines.push_back(key + "=" + settings.GetSetting(section, key));
    }
    return lines;
  }
  /// What the user is told or asked meanwhile, one text each.
  Lines Told(const std::function<void()>& body) {
    m_shell.Log.clear();
    body();
    return m_shell.Log;
  }

  SampleMachine m_sample;
  TempFolder m_temp;
  clsSettings m_settings{m_temp.Of("settings.ini")};
  ShellRecorder m_shell;
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
  clsConfigModel m_model{m_shell, m_settings, m_machine, "/nowhere/mapped"};
};

TEST_F(clsConfigModelTest, EmptyListsGetTheirDefaultsStoredAtOnce) {
  m_sample.WriteFile("C:\\windows\\win386.swp", "");
  m_sample.MakeFolder("C:\\$RECYCLE.BIN");
  clsConfigModel model(m_shell, m_settings, m_machine, m_sample.HostPath("C:\\tools"));
  Load(model);
  EXPECT_EQ(model.Folders, Lines{"C:"});
  EXPECT_EQ(Stored("ScanFolders"), Lines{"1=C:"});
  EXPECT_EQ(model.Excludes,
            (Lines{"C:\\tools\\", "C:\\$Recycle.Bin\\", Temp, "C:\\windows\\WIN386.SWP"}));
  EXPECT_EQ(Stored("ExcludeFiles"), (Lines{"1=C:\\tools\\", "2=C:\\$Recycle.Bin\\",
                                           std::string("3=") + Temp, "4=C:\\windows\\WIN386.SWP"}));
  EXPECT_TRUE(model.DiskScan && model.SizeInfo && model.AttributeInfo);
  EXPECT_TRUE(model.RegScan && model.FileExclude);
  EXPECT_FALSE(model.VersionInfo || model.RemoteRegistry);
  for (const ScanHive& hive : model.ShownHives()) {
    EXPECT_EQ(model.IsScanned(hive.Name), hive.Name != "HKEY_CLASSES_ROOT") << hive.Name;
  }
  EXPECT_TRUE(Stored("Enabled").empty() && Stored("RegScan").empty());

  // Those that can't be known while the registry can't be read are shown, and not stored.
  m_settings.DeleteSetting("ExcludeFiles");
  m_settings.SaveSetting("Enabled", "RegScan", "0");
  std::filesystem::rename(m_sample.Folder() + "/system.reg", m_temp.Of("system.reg"));
  clsConfigModel blind(m_shell, m_settings, clsMachine::Open(m_sample.Folder()), "/nowhere");
  Load(blind);
  EXPECT_EQ(blind.Excludes, Lines{"C:\\$Recycle.Bin\\"});
  blind.Save();
  EXPECT_EQ(Stored("ExcludeFiles"), Lines{});

  // A list of one's own gets none.
  m_settings.SaveSetting("ExcludeFiles", "1", "C:\\mine\\");
  model.LoadExcludes();
  EXPECT_EQ(model.Excludes, Lines{"C:\\mine\\"});
}

TEST_F(clsConfigModelTest, ParentsAndSubfoldersAreRefused) {
  const std::string parent = "parent folder", sub = "subfolders";
  m_sample.MakeFolder("C:\\Win");
  for (const auto& [known, typed, refused, added] :
       {std::tuple("C:", "C:\\Windows", parent, ""),
        {"C:\\", "c:/windows/", parent, ""},
        {"C:\\Windows\\", "C:\\WINDOWS", parent, ""},
        {"C:\\Windows", "\\windows", parent, ""},
        {"C:\\Windows", "C:\\", sub, ""},
        {"C:\\Windows\\a.txt", "C:\\windows", sub, ""},
        {"C:\\Windows", " C:/Win ", std::string(), "C:\\Win"},
        {"C:\\Win", "\\Windows", std::string(), "C:\\Windows"},
        {"C:\\", "  ", std::string(), ""}}) {
    SCOPED_TRACE(std::string(known) + " " + typed);
    for (const bool excludes : {false, true}) {
      Lines& list = excludes ? m_model.Excludes : m_model.Folders;
      list = {"D:\\", known};
      const std::string message = std::string("ask: You are already ") +
                                  (excludes ? "excluding" : "scanning") +
                                  " this folder or one of it's " + refused;
      const Lines told = Told([&, text = typed] {
        excludes ? m_model.AddExcludeFolder(text) : m_model.AddFolder(text);
      });
      EXPECT_EQ(told, refused.empty() ? Lines{} : Lines{message});
      const std::string last = *added == '\0' ? known : added + std::string(excludes ? "\\" : "");
      EXPECT_EQ(list.back(), last);
    }
  }
}

TEST_F(clsConfigModelTest, FoldersThatAScanDoesNotEnterAreScannedBesideIt) {
  m_sample.MakeFolder("C:\\.hidden\\in");
  m_model.HiddenFolders = false;
  for (const auto& [known, added] : {std::pair("C:", "C:\\.Hidden\\in"), {"C:\\.hidden", "C:"}}) {
    m_model.Folders = {known};
    EXPECT_TRUE(m_model.AddFolder(added)) << added;
  }
  m_model.Folders = {"C:\\.hidden"};
  EXPECT_FALSE(m_model.AddFolder("C:\\.hidden\\in"));
  m_model.Excludes = {"C:\\"};
  EXPECT_FALSE(m_model.AddExcludeFolder("C:\\.hidden"));
}

TEST_F(clsConfigModelTest, AnExclusionThatIsNotThereIsAskedAbout) {
  const auto question = [](const std::string& entry) {
    return "ask: " + entry + "\n\nIs not a valid file specification or folder...\n\n Add anyway?";
  };
  m_sample.MakeFolder("C:\\empty");
  for (const auto& [typed, stored, valid] :
       {std::tuple("C:\\windows\\WIN.INI", "C:\\windows\\WIN.INI", true),
        {" c:/windows/w??.ini ", "c:\\windows\\w??.ini", true},
        {"C:\\windows\\sys*", "C:\\windows\\sys*", true},  // a folder is found too
        {"C:\\empty\\*.*", "C:\\empty\\*.*", true},
        {"C:\\windows\\system32\\", "C:\\windows\\system32\\", true},
        {"\\Windows", "C:\\Windows\\", true},  // the folder, no file of that name
        {"C:\\gone\\*.*", "C:\\gone\\*.*", false},
        {"Q:\\x", "Q:\\x", false}}) {
    SCOPED_TRACE(typed);
    m_model.Excludes.clear();
    m_shell.Questions = {Answer::No};
    const Lines told = Told([&, text = typed] { EXPECT_EQ(m_model.AddExclude(text), valid); });
    EXPECT_EQ(told, valid ? Lines{} : Lines{question(stored)});
    m_shell.Questions = {Answer::Yes};
    EXPECT_TRUE(valid || m_model.AddExclude(typed));
    EXPECT_EQ(m_model.Excludes, Lines{stored});
  }
  EXPECT_EQ(Told([&] { m_model.AddExclude(""); }), Lines{});
  EXPECT_EQ(m_model.Excludes.size(), 1U);
}

// What would end every scan or every analysis is told when it is added.
TEST_F(clsConfigModelTest, WhatNoScanCouldWorkWithIsRefused) {
  for (const auto& [typed, why] : {std::pair("C:\\windows\\*", "begins with '*'"),
                                   {"C:\\windows\\*.txt", "begins with '*'"},
                                   {"nonsense", "names no drive"},
                                   {"~", "names no drive"}}) {
    const Lines told = Told([&, text = typed] { EXPECT_FALSE(m_model.AddExclude(text)); });
    EXPECT_NE(told.at(0).find(why), std::string::npos) << told.at(0);
  }
  for (const auto& [typed, why] : {std::pair("foo", "names no drive"),
                                   {"*", "names no drive"},
                                   {"C:C:\\x", "names no drive"},
                                   {"C:\\win*", "is no folder's name"},
                                   {"Q:\\x", "on a drive that the machine lacks. It has C:"}}) {
    const Lines told = Told([&, text = typed] { EXPECT_FALSE(m_model.AddFolder(text)); });
    EXPECT_NE(told.at(0).find(why), std::string::npos) << told.at(0);
  }
  m_model.Folders.clear();
  m_shell.Questions = {Answer::No};
  EXPECT_FALSE(m_model.AddFolder("C:\\coming"));
  EXPECT_TRUE(m_model.AddFolder("C:\\coming"));
}

TEST_F(clsConfigModelTest, FilesAreChosenByHostPathAndKeptByWindowsPath) {
  EXPECT_TRUE(m_model.AddExcludeFile(m_sample.HostPath("C:\\windows\\win.ini")));
  EXPECT_EQ(m_model.Excludes, Lines{"C:\\windows\\win.ini"});
  EXPECT_EQ(
      Told([&] { EXPECT_FALSE(m_model.AddExcludeFile("/elsewhere/x")); }),
      Lines{"ask: /elsewhere/x lies on no drive of the machine in " + m_sample.Folder() + "."});
  EXPECT_EQ(m_model.Excludes.size(), 1U);
}

TEST_F(clsConfigModelTest, SavesEveryKey) {
  Load(m_model);
  for (const char* key : {"2", "3"}) m_settings.SaveSetting("ExcludeFiles", key, "C:\\old");
  m_model.Folders = {"C:\\A", "D:\\"};
  m_model.Excludes.clear();
  m_model.DiskScan = m_model.SizeInfo = m_model.AttributeInfo = m_model.FileExclude =
      m_model.HiddenFolders = false;
  m_model.VersionInfo = true;
  m_model.SelectHives(true);
  m_model.SetScanned("HKEY_USERS", false);
  m_model.RemoteName = " BOX ";
  m_model.Save();
  EXPECT_EQ(Stored("ScanFolders"), (Lines{"1=C:\\A", "2=D:\\"}));
  EXPECT_EQ(Stored("ExcludeFiles"), Lines{});
  EXPECT_EQ(Stored("Enabled"),
            (Lines{"DiskScan=0", "VersionInfo=1", "SizeInfo=0", "AttributeInfo=0",
                   "HiddenFolders=0", "RegScan=1", "RemoteRegistry=0", "FileExclude=0"}));
  EXPECT_EQ(Stored("RegScan"),
            (Lines{"HKEY_CLASSES_ROOT=True", "HKEY_CURRENT_CONFIG=True", "HKEY_CURRENT_USER=True",
                   "HKEY_LOCAL_MACHINE=True", "HKEY_USERS=False", "RemoteName=BOX"}));

  // A remote computer has two hives; the others keep what was chosen, shown and stored.
  m_model.RemoteRegistry = true;
  EXPECT_EQ(m_model.ShownHives().size(), 2U);
  m_model.SelectHives(false);
  m_model.SetScanned("HKEY_CURRENT_USER", false);  // not on show
  m_model.Save();
  EXPECT_EQ(m_settings.GetSetting("RegScan", "HKEY_LOCAL_MACHINE"), "False");
  EXPECT_EQ(m_settings.GetSetting("RegScan", "HKEY_CURRENT_USER"), "True");
  m_model.RemoteRegistry = false;
  EXPECT_TRUE(m_model.IsScanned("HKEY_CLASSES_ROOT"));

  Load(m_model);
  EXPECT_TRUE(m_model.VersionInfo && m_model.RemoteRegistry && !m_model.FileExclude);
  EXPECT_EQ(m_model.RemoteName, "BOX");
}

}  // namespace
}  // namespace sandrel::test
