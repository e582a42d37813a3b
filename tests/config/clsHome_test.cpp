#include "config/clsHome.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "config/clsScanSettings.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"
#include "support/Variables.h"

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
  const test::Variables clean{
      {"HOME", "/h"}, {"SANDREL_MACHINE", std::nullopt}, {"WINEPREFIX", std::nullopt}};
  clsSettings settings(temp.Of("settings.ini"));
  EXPECT_EQ(MachineFolder("", settings), "/h/.wine");
  settings.SaveSetting("Machine", "Folder", "/chosen");
  EXPECT_EQ(MachineFolder("", settings), "/chosen");
  const test::Variables prefix{{"WINEPREFIX", "/prefix"}};
  EXPECT_EQ(MachineFolder("", settings), "/prefix");
  const test::Variables machine{{"SANDREL_MACHINE", "/machine"}};
  EXPECT_EQ(MachineFolder("", settings), "/machine");
  EXPECT_EQ(MachineFolder("/given/", settings), "/given");
}

TEST(clsScanSettings, ReadsSwitchesListsAndNames) {
  const test::TempFolder temp;
  clsSettings store(temp.Of("settings.ini"));
  clsScanSettings settings(store);
  for (const auto& [text, on] :
       {std::pair("1", true), {"01", true}, {"0", false}, {"2", false}, {"True", false}}) {
    store.SaveSetting("Enabled", "RemoteRegistry", text);
    EXPECT_EQ(settings.RemoteRegistry(), on) << text;
  }
  for (const char* key : {"1", "2", "4"}) store.SaveSetting("ScanFolders", key, key);
  EXPECT_EQ(settings.List("ScanFolders"), (std::vector<std::string>{"1", "2"}));  // a gap ends it
  store.SaveSetting("RegScan", "RemoteName", " \\\\box ");
  EXPECT_EQ(settings.RemoteName(), "");
  store.SaveSetting("Enabled", "RemoteRegistry", "1");
  EXPECT_EQ(settings.RemoteName(), "box");
}

}  // namespace
}  // namespace sandrel
