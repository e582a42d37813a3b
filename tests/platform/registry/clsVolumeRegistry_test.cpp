#include <gtest/gtest.h>

#include <filesystem>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/text.h"
#include "platform/registry/DumpKeys.h"
#include "platform/registry/clsRegistry.h"
#include "support/NumberOf.h"
#include "support/RegfBuilder.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

const std::string Ann = "S-1-5-21-1-2-3-1001";
const std::string Bob = "S-1-5-21-1-2-3-1002";

// A volume with two users, whose names of files and folders have the case of a careless copy.
class clsVolumeRegistryTest : public testing::Test {
 protected:
  clsVolumeRegistryTest() {
    software.Key("Microsoft\\Windows NT\\CurrentVersion").Text("SystemRoot", "C:\\WINDOWS");
    Profile("S-1-5-18", "%systemroot%\\system32\\config\\systemprofile");
    Profile("S-1-5-19", "%SystemRoot%\\ServiceProfiles\\LocalService");
    Profile(Ann, "C:\\Users\\Ann");
    Profile(Bob, "%SystemDrive%\\Users\\bob.HOST");
    Profile(Ann + ".bak", "C:\\Users\\Ann");
    software.Key("Classes\\.txt").Text("", "machine");
    software.Key("link").link = true;
    software.Key("link text").Text("SymbolicLinkValue", "\\").link = true;
    system.Key("Select").Dword("Default", 1).Dword("Current", 2);
    system.Key("ControlSet001").Dword("set", 1);
    system.Key("ControlSet002").Dword("set", 2);
    system.Key("ControlSet002\\Hardware Profiles\\0001").Dword("p", 1);
    system.Key("ControlSet002\\Hardware Profiles\\Current")
        .LinkTo("\\Registry\\Machine\\System\\CurrentControlSet\\Hardware Profiles\\0001");
    WriteMachine();
    Write("windows/serviceprofiles/LocalService/ntuser.dat", Hive("Service"));
    Write("users/ann/Ntuser.Dat", Hive("Software\\Ann"));
    RegfBuilder classes;
    classes.Key(".txt").Text("", "ann");
    Write("users/ann/AppData/local/Microsoft/Windows/USRCLASS.DAT", classes);
    Write("users/BOB.host/NTUSER.DAT", Hive("Software\\Bob"));
    Write("windows/System32/Config/DEFAULT", Hive("Default"));
  }

  static RegfBuilder Hive(std::string_view key) {
    RegfBuilder hive;
    hive.Key(key);
    return hive;
  }

  RegfKey& Profile(const std::string& sid, const char* path) {
    RegfKey& key = software.Key("Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\" + sid);
    const std::string data = text::ToUtf16Le(path) + std::string(2, '\0');
    return key.Value("ProfileImagePath", regtype::ExpandSz, data);
  }

  void Write(const std::string& name, RegfBuilder hive) {
    const std::string path = m_folder.Of(name);
    clsFileWorks::MakeFolders(std::filesystem::path(path).parent_path());
    clsFileWorks::ReplaceWhole(path, hive.Build());
  }

  void WriteMachine() {
    Write("windows/System32/Config/SOFTWARE", software);
    Write("windows/System32/Config/system", system);
  }

  std::unique_ptr<clsRegistry> Open(std::string_view user = {}) {
    return OpenVolumeRegistry(m_folder.Path(), user);
  }

  static bool Has(clsRegistry& registry, std::uint32_t root, std::string_view path) {
    clsRegistry::Handle key;
    return registry.RegOpenKeyEx(root, path, key) == regstatus::Success;
  }

  TempFolder m_folder;
  RegfBuilder software;
  RegfBuilder system;
};

TEST_F(clsVolumeRegistryTest, PutsTheHivesBelowTheirRoots) {
  const auto registry = Open();
  EXPECT_EQ(registry->Roots().size(), 5u);
  EXPECT_EQ(
      DumpKeys(*registry, hkey::Users),
      "[]\n[.DEFAULT]\n[.DEFAULT\\Default]\n[S-1-5-18]\n[S-1-5-18\\Default]\n"
      "[S-1-5-19]\n[S-1-5-19\\Service]\n" +
          fmt::format("[{0}]\n[{0}\\Software]\n[{0}\\Software\\Ann]\n[{0}\\Software\\Classes]"
                      "\n[{0}\\Software\\Classes\\.txt]\n{1}[{0}_Classes]\n"
                      "[{0}_Classes\\.txt]\n{1}[{2}]\n[{2}\\Software]\n[{2}\\Software\\Bob]\n",
                      Ann, "=1:61006e006e000000\n", Bob));
  EXPECT_EQ(Query(*registry, hkey::LocalMachine, "System\\CurrentControlSet", "set"), "4:02000000");
  EXPECT_EQ(Query(*registry, hkey::LocalMachine, "System\\ControlSet001", "set"), "4:01000000");
  EXPECT_EQ(DumpKeys(*registry, hkey::CurrentConfig), "[]\np=4:01000000\n");
  EXPECT_EQ(DumpKeys(*registry, hkey::ClassesRoot), "[]\n[.txt]\n=1:61006e006e000000\n");
  for (const char* link : {"SOFTWARE\\link", "SOFTWARE\\link text"})
    EXPECT_FALSE(Has(*registry, hkey::LocalMachine, link)) << link;
  EXPECT_TRUE(registry->Remarks().empty());
  std::string hives;
  for (const HiveFile& hive : registry->HiveFiles()) hives += hive.Key + "|";
  EXPECT_EQ(hives, fmt::format("HKEY_LOCAL_MACHINE\\SOFTWARE|HKEY_LOCAL_MACHINE\\SYSTEM|"
                               "HKEY_USERS\\.DEFAULT|HKEY_USERS\\S-1-5-19|HKEY_USERS\\{0}|"
                               "HKEY_USERS\\{0}_Classes|HKEY_USERS\\{1}|",
                               Ann, Bob));
  EXPECT_EQ(registry->RegCreateKeyEx(hkey::LocalMachine, "SOFTWARE\\x"), regstatus::AccessDenied);
}

TEST_F(clsVolumeRegistryTest, ChoosesTheCurrentUser) {
  const auto isBob = [](clsRegistry& registry) {
    const bool has = Has(registry, hkey::CurrentUser, "Software\\Bob");
    EXPECT_EQ(registry.CurrentUserSid(), has ? Bob : Ann);
    return has;
  };
  EXPECT_FALSE(isBob(*Open()));  // the first person, no service
  for (const std::string user : {"S-1-5-21-1-2-3-1002", "BOB.HOST", "bob", "HOST\\Bob", ".\\bob"})
    EXPECT_TRUE(isBob(*Open(user))) << user;
  EXPECT_TRUE(Has(*Open("LocalService"), hkey::CurrentUser, "Service"));
  EXPECT_TRUE(Raises(errnum::Hive, "Ann, bob.HOST", [&] { Open("carl"); }));
  const char* logon = "Microsoft\\Windows\\CurrentVersion\\Authentication\\LogonUI";
  const std::tuple<const char*, const char*, std::string> cases[] = {
      {"Microsoft\\Windows NT\\CurrentVersion\\Winlogon", "DefaultUserName", "bob"},
      {logon, "LastLoggedOnUser", ".\\bob"},
      {logon, "LastLoggedOnSAMUser", "HOST\\bob"},
      {logon, "LastLoggedOnUserSID", Bob},
  };
  for (const auto& [key, name, text] : cases) {
    const RegfKey before = software.root;
    software.Key(key).Text(name, text);
    WriteMachine();
    EXPECT_TRUE(isBob(*Open())) << name;
    software.root = before;
  }
}

TEST_F(clsVolumeRegistryTest, TellsWhatIsNotSeen) {
  std::filesystem::remove(m_folder.Of("users/BOB.host/NTUSER.DAT"));
  Profile("S-1-5-21-1-2-3-1003", "E:\\Users\\eve");
  software.sequence2 = 9;
  WriteMachine();
  const auto registry = Open();
  ASSERT_EQ(registry->Remarks().size(), 3u);
  EXPECT_NE(registry->Remarks()[0].find("SOFTWARE stand in its log"), std::string::npos);
  EXPECT_NE(registry->Remarks()[1].find("bob.HOST"), std::string::npos);
  EXPECT_NE(registry->Remarks()[2].find("E:\\Users\\eve"), std::string::npos);
  EXPECT_FALSE(Has(*registry, hkey::Users, Bob));
}

TEST_F(clsVolumeRegistryTest, NeverTakesAHiveThatCannotBeReadForAnEmptyOne) {
  for (const char* name : {"windows/System32/Config/SOFTWARE", "windows/System32/Config/system",
                           "windows/System32/Config/DEFAULT", "users/ann/Ntuser.Dat",
                           "users/ann/AppData/local/Microsoft/Windows/USRCLASS.DAT"}) {
    const std::string path = m_folder.Of(name);
    const std::string content = clsFileWorks::ReadWhole(path);
    clsFileWorks::ReplaceWhole(path, content.substr(0, content.size() / 2));
    EXPECT_TRUE(Raises(errnum::Hive, path, [&] { Open(); }));
    clsFileWorks::ReplaceWhole(path, content);
  }
  std::filesystem::remove(m_folder.Of("windows/System32/Config/system"));
  EXPECT_THROW(Open(), clsError);
}

TEST_F(clsVolumeRegistryTest, DoesWithoutWhatAPlainVolumeLacks) {
  std::filesystem::remove_all(m_folder.Of("users"));
  std::filesystem::remove(m_folder.Of("windows/System32/Config/DEFAULT"));
  software.root = {};
  system.root = {};
  WriteMachine();
  const auto registry = Open();
  EXPECT_EQ(registry->Roots(), (std::vector<std::uint32_t>{hkey::LocalMachine, hkey::Users}));
  EXPECT_EQ(registry->CurrentUserSid(), "");
  EXPECT_EQ(DumpKeys(*registry, hkey::LocalMachine), "[]\n[SOFTWARE]\n[SYSTEM]\n");
  EXPECT_EQ(DumpKeys(*registry, hkey::Users), "[]\n");
}

}  // namespace
}  // namespace sandrel::test
