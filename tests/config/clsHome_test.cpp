#include "config/clsHome.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "config/clsScanSettings.h"
#include "support/NumberOf.h"
#include "support/SampleMachine.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

TEST(clsHome, LocksAgainstOtherProcessesAndNests) {
  const test::TempFolder temp;
  const clsHome home = clsHome::Find(temp.Of("made/./home/"));
  EXPECT_EQ(home.Path(), temp.Of("made/home"));
  EXPECT_EQ(home.WorkingDatabase(), temp.Of("made/home/SandrelTemp.zqd"));
  // The other process begins before the lock is taken, so that it inherits nothing of it.
  int go[2];
  ASSERT_EQ(pipe(go), 0);
  const pid_t child = fork();
  if (child == 0) {
    char signal = 0;
    const auto tryLock = [&] {
      return read(go[0], &signal, 1) == 1 ? test::NumberOf([&] { clsHomeLock lock(home); }) : -1;
    };
    const std::int32_t whileHeld = tryLock();
    _exit(whileHeld == errnum::HomeBusy && tryLock() == 0 ? 0 : 1);
  }
  {
    const clsHomeLock lock(home);
    const clsHomeLock nested(home);
    EXPECT_EQ(write(go[1], "1", 1), 1);
    usleep(100000);
  }
  EXPECT_EQ(write(go[1], "2", 1), 1);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  close(go[0]);
  close(go[1]);
}

TEST(clsHome, ChoosesTheMachineInOrder) {
  const test::TempFolder temp;
  clsSettings settings(temp.Of("settings.ini"));
  setenv("HOME", "/h", 1);
  unsetenv("SANDREL_MACHINE");
  unsetenv("WINEPREFIX");
  EXPECT_EQ(MachineFolder("", settings), "/h/.wine");
  settings.SaveSetting("Machine", "Folder", "/chosen");
  EXPECT_EQ(MachineFolder("", settings), "/chosen");
  setenv("WINEPREFIX", "/prefix", 1);
  EXPECT_EQ(MachineFolder("", settings), "/prefix");
  setenv("SANDREL_MACHINE", "/machine", 1);
  EXPECT_EQ(MachineFolder("", settings), "/machine");
  EXPECT_EQ(MachineFolder("/given/", settings), "/given");
  unsetenv("SANDREL_MACHINE");
  unsetenv("WINEPREFIX");
}

TEST(clsScanSettings, ReadsSwitchesListsAndHives) {
  const test::TempFolder temp;
  clsSettings store(temp.Of("settings.ini"));
  clsScanSettings settings(store);
  EXPECT_TRUE(settings.DiskScan() && settings.SizeInfo() && settings.FileExclude());
  EXPECT_FALSE(settings.VersionInfo() || settings.RemoteRegistry());
  for (const auto& [text, on] :
       {std::pair("1", true), {"01", true}, {"0", false}, {"2", false}, {"True", false}}) {
    store.SaveSetting("Enabled", "VersionInfo", text);
    EXPECT_EQ(settings.VersionInfo(), on) << text;
  }
  for (const char* key : {"1", "2", "4"})
    store.SaveSetting("ScanFolders", key, "C:\\" + std::string(key));
  EXPECT_EQ(settings.List("ScanFolders"),
            (std::vector<std::string>{"C:\\1", "C:\\2"}));  // a gap ends it
  EXPECT_FALSE(settings.IsSelected({"HKEY_CLASSES_ROOT", hkey::ClassesRoot}));
  EXPECT_TRUE(settings.IsSelected({"HKEY_USERS", hkey::Users}));
  store.SaveSetting("RegScan", "HKEY_USERS", "False");
  store.SaveSetting("RegScan", "HKEY_CLASSES_ROOT", "True");
  EXPECT_FALSE(settings.IsSelected({"HKEY_USERS", hkey::Users}));
  EXPECT_TRUE(settings.IsSelected({"HKEY_CLASSES_ROOT", hkey::ClassesRoot}));
  store.SaveSetting("RegScan", "RemoteName", " \\\\box ");
  EXPECT_EQ(settings.RemoteName(), "");
  store.SaveSetting("Enabled", "RemoteRegistry", "1");
  EXPECT_EQ(settings.RemoteName(), "box");
}

TEST(DefaultExcludes, AreThoseOfTheMachine) {
  test::SampleMachine sample;
  const auto machine = clsMachine::Open(sample.Folder());
  clsSettings store(sample.Folder() + "/settings.ini");
  clsScanSettings settings(store);
  EXPECT_EQ(DefaultExcludes(*machine, "/nowhere/mapped", settings),
            (std::vector<std::string>{"C:\\users\\tester\\Temp\\"}));
  sample.WriteFile("C:\\windows\\win386.swp", "");
  EXPECT_EQ(DefaultExcludes(*machine, sample.HostPath("C:\\tools"), settings),
            (std::vector<std::string>{"C:\\tools\\", "C:\\users\\tester\\Temp\\",
                                      "C:\\windows\\WIN386.SWP"}));
}

}  // namespace
}  // namespace sandrel
