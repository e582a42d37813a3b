#include "config/clsConfigModel.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "support/NumberOf.h"
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
  Load(m_model);
  EXPECT_EQ(m_model.Folders, Lines{"C:"});
  EXPECT_EQ(Stored("ScanFolders"), Lines{"1=C:"});
  EXPECT_EQ(m_model.Excludes, (Lines{Temp, "C:\\windows\\WIN386.SWP"}));
  EXPECT_EQ(Stored("ExcludeFiles"), (Lines{std::string("1=") + Temp, "2=C:\\windows\\WIN386.SWP"}));
  EXPECT_TRUE(m_model.DiskScan && m_model.SizeInfo && m_model.AttributeInfo);
  EXPECT_TRUE(m_model.RegScan && m_model.FileExclude);
  EXPECT_FALSE(m_model.VersionInfo || m_model.RemoteRegistry);
  for (const ScanHive& hive : m_model.ShownHives()) {
    EXPECT_EQ(m_model.IsScanned(hive.Name), hive.Name != "HKEY_CLASSES_ROOT") << hive.Name;
  }
  EXPECT_TRUE(Stored("Enabled").empty() && Stored("RegScan").empty());

  // A list of one's own gets none.
  m_settings.DeleteSetting("ExcludeFiles");
  m_settings.SaveSetting("ExcludeFiles", "1", "C:\\mine\\");
  m_model.LoadExcludes();
  EXPECT_EQ(m_model.Excludes, Lines{"C:\\mine\\"});
}

TEST_F(clsConfigModelTest, WithoutAMachineThereAreNoDefaultsAndTheRestWorks) {
  clsConfigModel model(m_shell, m_settings, nullptr, "/nowhere/mapped");
  Load(model);
  EXPECT_TRUE(model.Folders.empty() && model.Excludes.empty());
  EXPECT_TRUE(model.AddFolder("C:\\Games"));
  EXPECT_TRUE(model.AddExclude("C:\\x\\"));  // asked about, as nothing is known to be there
  EXPECT_TRUE(m_shell.Has("Is not a valid file"));
  model.Save();
  EXPECT_EQ(Stored("ScanFolders"), Lines{"1=C:\\Games"});
  EXPECT_EQ(Stored("ExcludeFiles"), Lines{"1=C:\\x\\"});
}

TEST_F(clsConfigModelTest, ParentsAndSubfoldersAreRefused) {
  const std::string doing[] = {"scanning", "excluding"};
  for (const bool excludes : {false, true}) {
    const std::string already = "ask: You are already " + doing[excludes ? 1 : 0];
    const std::string parent = already + " this folder or one of it's parent folder";
    const std::string sub = already + " this folder or one of it's subfolders";
    Lines& list = excludes ? m_model.Excludes : m_model.Folders;
    for (const auto& [known, added, message] : {std::tuple("C:", "C:\\Windows", parent),
                                                {"C:\\", "c:/windows/", parent},
                                                {"C:\\Windows\\", "C:\\WINDOWS", parent},
                                                {"C:\\Windows", "C:\\", sub},
                                                {"C:\\Windows\\a.txt", "C:\\windows", sub},
                                                {"C:\\Windows", "C:\\Win", std::string()},
                                                {"C:\\Win", "C:\\Windows", std::string()},
                                                {"C:\\", "  ", std::string()}}) {
      SCOPED_TRACE(std::string(known) + " " + added);
      list = {"D:\\", known};
      const Lines told = Told([&, text = added] {
        excludes ? m_model.AddExcludeFolder(text) : m_model.AddFolder(text);
      });
      EXPECT_EQ(told, message.empty() ? Lines{} : Lines{message});
      const bool adds = message.empty() && *added != ' ';
      EXPECT_EQ(list.size(), adds ? 3U : 2U);
      if (adds) {
        EXPECT_EQ(list.back(), std::string(added) + (excludes ? "\\" : ""));
      }
    }
  }
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
        {"C:\\Windows", "C:\\Windows\\", true},  // the folder, no file of that name
        {"C:\\windows\\*.txt", "C:\\windows\\*.txt", false},
        {"C:\\gone\\*.*", "C:\\gone\\*.*", false},
        {"Q:\\x", "Q:\\x", false},
        {"nonsense", "nonsense", false}}) {
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
  m_model.DiskScan = m_model.SizeInfo = m_model.AttributeInfo = m_model.FileExclude = false;
  m_model.VersionInfo = true;
  m_model.SelectHives(true);
  m_model.SetScanned("HKEY_USERS", false);
  m_model.RemoteName = " BOX ";
  m_model.Save();
  EXPECT_EQ(Stored("ScanFolders"), (Lines{"1=C:\\A", "2=D:\\"}));
  EXPECT_EQ(Stored("ExcludeFiles"), Lines{});
  EXPECT_EQ(Stored("Enabled"),
            (Lines{"DiskScan=0", "VersionInfo=1", "SizeInfo=0", "AttributeInfo=0", "RegScan=1",
                   "RemoteRegistry=0", "FileExclude=0"}));
  EXPECT_EQ(Stored("RegScan"),
            (Lines{"HKEY_CLASSES_ROOT=True", "HKEY_CURRENT_CONFIG=True", "HKEY_CURRENT_USER=True",
                   "HKEY_LOCAL_MACHINE=True", "HKEY_USERS=False", "RemoteName=BOX"}));

  // A remote computer has two hives; the others keep what was chosen, shown and stored.
  m_model.RemoteRegistry = true;
  EXPECT_EQ(m_model.ShownHives().size(), 2U);
  EXPECT_FALSE(m_model.IsScanned("HKEY_USERS"));
  m_model.SelectHives(false);
  m_model.SetScanned("HKEY_CURRENT_USER", false);  // not on show
  m_model.Save();
  EXPECT_EQ(m_settings.GetSetting("Enabled", "RemoteRegistry"), "1");
  EXPECT_EQ(m_settings.GetSetting("RegScan", "HKEY_LOCAL_MACHINE"), "False");
  EXPECT_EQ(m_settings.GetSetting("RegScan", "HKEY_CURRENT_USER"), "True");
  m_model.RemoteRegistry = false;
  EXPECT_TRUE(m_model.IsScanned("HKEY_CLASSES_ROOT"));

  clsConfigModel again(m_shell, m_settings, m_machine, "/nowhere/mapped");
  Load(again);
  EXPECT_EQ(again.Folders, m_model.Folders);
  EXPECT_TRUE(again.VersionInfo && again.RemoteRegistry && !again.FileExclude);
  EXPECT_EQ(again.RemoteName, "BOX");
}

}  // namespace
}  // namespace sandrel::test
