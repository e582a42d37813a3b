#include "platform/machine/clsEnvironment.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "common/text.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

const char* CurrentVersion = "Software\\Microsoft\\Windows NT\\CurrentVersion";

class clsEnvironmentTest : public testing::Test {
 protected:
  void Set(std::uint32_t root, std::string_view key, std::string_view name, std::string_view text,
           std::uint32_t type = regtype::Sz) {
    ASSERT_EQ(m_registry->RegCreateKeyEx(root, key), regstatus::Success);
    ASSERT_EQ(
        m_registry->RegSetValueEx(root, key, name, type, text::ToUtf16Le(std::string(text) + '\0')),
        regstatus::Success);
  }
  void AddProfile(const std::string& sid, std::string_view folder) {
    Set(hkey::LocalMachine, CurrentVersion + ("\\ProfileList\\" + sid), "ProfileImagePath", folder,
        regtype::ExpandSz);
  }

  test::TempFolder m_volume;
  std::unique_ptr<clsRegistry> m_registry = MakeMemoryRegistry("S-1-5-21-1-2-3-1001");
  clsPathMap m_paths = clsPathMap::OfVolume(m_volume.Path());
  clsEnvironment m_environment{*m_registry, m_paths};
};

TEST_F(clsEnvironmentTest, FindsTheUsersFolderOfAnOfflineVolume) {
  EXPECT_EQ(m_environment.Variable("USERPROFILE"), "");
  Set(hkey::CurrentUser, "Environment", "TEMP", "%USERPROFILE%\\Temp", regtype::ExpandSz);
  EXPECT_EQ(m_environment.Variable("temp"), "%USERPROFILE%\\Temp");  // unknown, so left alone
  AddProfile("S-1-5-18", "%systemroot%\\system32\\config\\systemprofile");
  AddProfile("S-1-5-21-1-2-3-1000", "C:\\Users\\ann");
  EXPECT_EQ(m_environment.Variable("userprofile"), "");  // nobody else's
  AddProfile("S-1-5-21-1-2-3-1001", "%SystemDrive%\\Users\\Anna\\");
  EXPECT_EQ(m_environment.Variable("temp"), "C:\\Users\\Anna\\Temp");
}

TEST_F(clsEnvironmentTest, FallsBackToTheWindowsFolderThatIsThere) {
  EXPECT_EQ(m_environment.WindowsFolder(), "C:\\windows");
  std::filesystem::create_directory(m_volume.Of("WINNT"));
  std::filesystem::create_directory(m_volume.Of("Windows"));
  EXPECT_EQ(m_environment.WindowsFolder(), "C:\\Windows");
  // The volume was another drive when its system ran.
  Set(hkey::LocalMachine, CurrentVersion, "SystemRoot", "E:\\WINDOWS");
  EXPECT_EQ(m_environment.WindowsFolder(), "C:\\Windows");
  Set(hkey::LocalMachine, CurrentVersion, "SystemRoot", "C:\\winnt\\");
  EXPECT_EQ(m_environment.WindowsFolder(), "C:\\winnt");
}

TEST_F(clsEnvironmentTest, ExpandsReferencesWithoutEnd) {
  const char* system = "System\\CurrentControlSet\\Control\\Session Manager\\Environment";
  Set(hkey::LocalMachine, system, "Path", "%SystemRoot%\\system32");
  Set(hkey::LocalMachine, system, "Half", "50% of %NoSuch% and %%");
  Set(hkey::CurrentUser, "Environment", "PATH", "%path%;%Home%\\bin");
  Set(hkey::CurrentUser, "Environment", "Home", "%systemdrive%\\home");
  EXPECT_EQ(m_environment.Variable("Path"), "C:\\windows\\system32;C:\\home\\bin");
  EXPECT_EQ(m_environment.Variable("half"), "50% of %NoSuch% and %%");

  std::string previous(1000, 'x');
  for (int i = 0; i < 40; ++i) {
    const std::string name = "V" + std::to_string(i);
    Set(hkey::CurrentUser, "Environment", name, previous);
    previous.assign("%").append(name).append("%%").append(name).append("%");
  }
  EXPECT_LT(m_environment.Variable("V39").size(), 1000000u);  // would be 2 to the 39 times 1000
  Set(hkey::CurrentUser, "Environment", "A", "<%B%%B%>");
  Set(hkey::CurrentUser, "Environment", "B", "%A%%A%");
  EXPECT_LT(m_environment.Variable("A").size(), 1000u);
}

}  // namespace
}  // namespace sandrel
