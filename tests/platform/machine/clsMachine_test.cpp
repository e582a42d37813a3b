#include "platform/machine/clsMachine.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "common/clsError.h"
#include "support/NumberOf.h"
#include "support/SampleMachine.h"

namespace sandrel::test {
namespace {

using testing::ElementsAre;
using testing::Optional;
using namespace std::string_view_literals;

class clsMachineTest : public testing::Test {
 protected:
  SampleMachine m_sample;
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
};

TEST(clsMachineOpen, TellsAPrefixAVolumeAndNeither) {
  TempFolder folder;
  std::filesystem::create_directories(folder.Of("volume/WINDOWS/system32/Config"));
  const auto volume = clsMachine::Open(folder.Of("volume/"));
  EXPECT_EQ(volume->MachineKind(), clsMachine::Kind::OfflineVolume);
  EXPECT_EQ(volume->Folder(), folder.Of("volume"));
  EXPECT_THAT(volume->Drives(), ElementsAre("C:"));
  EXPECT_THAT(volume->HostPath("C:\\Windows\\SYSTEM32"),
              Optional(folder.Of("volume/WINDOWS/system32")));

  // A prefix as old as to have no dosdevices.
  std::filesystem::create_directories(folder.Of("prefix/drive_c/x"));
  const auto prefix = clsMachine::Open(folder.Of("prefix"));
  EXPECT_EQ(prefix->MachineKind(), clsMachine::Kind::WinePrefix);
  EXPECT_THAT(prefix->HostPath("C:\\X\\"), Optional(folder.Of("prefix/drive_c/x")));

  for (const char* name : {"volume/WINDOWS", "missing"}) {
    for (const std::string& part :
         {folder.Of(name), std::string("drive_c"), std::string("System32/config")})
      EXPECT_TRUE(Raises(errnum::Machine, part, [&] { clsMachine::Open(folder.Of(name)); }));
  }
}

TEST_F(clsMachineTest, DrivesAreTheLinksThatLeadToFolders) {
  m_sample.MapDrive('z', "/");
  m_sample.MapDrive('d', "../gone");
  m_sample.MapDrive('e', m_sample.HostPath("C:\\windows\\win.ini"));
  for (const char* name : {"c::", "com1", "C:"}) {
    std::filesystem::create_symlink("/", m_sample.Folder() + "/dosdevices/" + name);
  }
  EXPECT_THAT(m_machine->Drives(), ElementsAre("C:", "Z:"));
  EXPECT_EQ(m_machine->CurrentDrive(), "C:");
  EXPECT_THAT(m_machine->HostPath("C:"), Optional(m_sample.Folder() + "/drive_c"));
  EXPECT_THAT(m_machine->HostPath("z:\\"), Optional(std::string("/")));
  EXPECT_EQ(m_machine->HostPath("D:\\"), std::nullopt);
  // Drives may come and go while the machine is looked at.
  m_sample.MapDrive('b', "../drive_c/windows");
  std::filesystem::remove(m_sample.Folder() + "/dosdevices/c:");
  // Without its link C: is drive_c all the same, as in a prefix that was copied without links.
  EXPECT_THAT(m_machine->Drives(), ElementsAre("B:", "C:", "Z:"));
  EXPECT_THAT(m_machine->HostPath("C:"), Optional(m_sample.Folder() + "/drive_c"));
  EXPECT_TRUE(m_machine->FileExists("B:\\WIN.INI"));
  EXPECT_EQ(m_machine->Details("b:").Attributes, fileattr::Directory);
  EXPECT_TRUE(
      Raises(errnum::PathFileAccess, "C:\\gone.txt", [&] { m_machine->Details("C:\\gone.txt"); }));
}

TEST_F(clsMachineTest, FindsPathsWithoutRegardToCase) {
  m_sample.WriteFile("C:\\\xC3\x84rger\\x", "");
  for (const char* path :
       {"C:\\Program Files\\Tool\\readme.txt", "c:\\PROGRAM FILES\\tool\\Readme.TXT",
        "C:/program files//tool\\.\\readme.txt\\",
        "C:\\windows\\..\\..\\Program Files\\Tool\\readme.txt"})
    EXPECT_THAT(m_machine->HostPath(path),
                Optional(m_sample.HostPath("C:\\Program Files\\Tool\\readme.txt")))
        << path;
  EXPECT_THAT(m_machine->HostPath("C:\\\xC3\xA4RGER\\X"),
              Optional(m_sample.HostPath("C:\\\xC3\x84rger\\x")));
  for (const std::string_view path :
       {"C:\\Program Files\\Tool\\readme.txt\\below"sv, "C:\\Program Files\\nothing"sv,
        "C:windows"sv, "\\\\server\\share"sv, "windows"sv, "C:\\win*"sv, ""sv, "C:\\windows\0"sv})
    EXPECT_EQ(m_machine->HostPath(path), std::nullopt) << path;
}

TEST_F(clsMachineTest, NeverGivesAnAnswerOfYesterday) {
  const std::string path = "C:\\NEW\\a.txt";
  EXPECT_FALSE(m_machine->FileExists(path));
  // A name that is nearer in byte order wins; then the first one goes.
  for (const char* nearer : {"C:\\new\\A.txt", "C:\\New\\A.txt"}) {
    m_sample.WriteFile(nearer, "");
    EXPECT_THAT(m_machine->HostPath(path), Optional(m_sample.HostPath(nearer)));
  }
  m_sample.Remove("C:\\New");
  EXPECT_THAT(m_machine->HostPath(path), Optional(m_sample.HostPath("C:\\new\\A.txt")));
}

TEST_F(clsMachineTest, RemembersANameOnlyWhileItsFolderStaysAsItIs) {
  // A folder at rest, whose names are remembered.
  m_sample.WriteFile("C:\\rest\\Name", "");
  m_sample.SetTime("C:\\rest", 1000000000);
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(m_machine->HostPath("C:\\rest\\NAME"),
                Optional(m_sample.HostPath("C:\\rest\\Name")));
    EXPECT_FALSE(m_machine->FileExists("C:\\rest\\other"));
    sleep(i == 0 ? 3 : 0);
  }
  m_sample.Remove("C:\\rest\\Name");
  m_sample.WriteFile("C:\\rest\\Other", "");
  EXPECT_FALSE(m_machine->FileExists("C:\\rest\\NAME"));
  EXPECT_TRUE(m_machine->FileExists("C:\\rest\\other"));
}

TEST_F(clsMachineTest, MapsHostPathsByTheNearestDrive) {
  m_sample.MapDrive('z', "/");
  m_sample.MapDrive('w', "../drive_c/windows");
  m_sample.MapDrive('x', "../drive_c/windows");
  const std::string outside = m_sample.Folder() + "/outside";
  std::string outsideWindows = outside;
  std::replace(outsideWindows.begin(), outsideWindows.end(), '/', '\\');
  std::filesystem::create_directory(outside);
  std::filesystem::create_symlink(outside, m_sample.HostPath("C:\\link"));
  std::filesystem::create_symlink(m_sample.HostPath("C:\\users"), outside + "/back");
  const std::pair<std::string, std::optional<std::string>> cases[] = {
      {m_sample.HostPath("C:\\users\\tester"), "C:\\users\\tester"},
      {m_sample.HostPath("C:\\users\\not there\\"), "C:\\users\\not there"},
      {m_sample.HostPath("C:\\windows\\system32"), "W:\\system32"},
      {m_sample.HostPath("C:\\windows"), "W:\\"},
      {m_sample.HostPath("C:\\windows2"), "C:\\windows2"},
      {m_sample.HostPath("C:\\link\\a"), "C:\\link\\a"},
      {outside + "/back/tester", "C:\\users\\tester"},
      {outside + "/x/../y", "Z:" + outsideWindows + "\\y"},
      {m_sample.HostPath("C:\\what") + "?", std::nullopt},
      {m_sample.HostPath("C:\\caf") + "\xE9", "C:\\caf\xEF\x9F\xA9"},
      {"", std::nullopt},
      {"/", "Z:\\"},
  };
  for (const auto& [host, expected] : cases)
    EXPECT_EQ(m_machine->WindowsPath(host), expected) << host;
  std::filesystem::remove(m_sample.Folder() + "/dosdevices/z:");
  EXPECT_EQ(m_machine->WindowsPath(outside), std::nullopt);
}

TEST_F(clsMachineTest, ReachesRemoteComputersByTheirFolders) {
  unsetenv("SANDREL_NETWORK");
  EXPECT_EQ(m_machine->RegConnectRegistry("\\\\Box"), nullptr);
  TempFolder network;
  SampleMachine box;
  std::filesystem::create_symlink(box.Folder(), network.Of("BOX"));
  std::filesystem::create_directory(network.Of("empty"));
  setenv("SANDREL_NETWORK", network.Path().c_str(), 1);
  const std::shared_ptr<clsRegistry> remote = m_machine->RegConnectRegistry("\\\\Box");
  ASSERT_NE(remote, nullptr);
  EXPECT_EQ(m_machine->RegConnectRegistry("box"), remote);
  for (const char* name : {"empty", "missing", "..", "\\\\"})
    EXPECT_EQ(m_machine->RegConnectRegistry(name), nullptr) << name;
  m_machine->CloseRegistry();
  EXPECT_NE(m_machine->RegConnectRegistry("Box"), remote);
  unsetenv("SANDREL_NETWORK");
}

}  // namespace
}  // namespace sandrel::test
