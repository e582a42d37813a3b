#include "config/clsHome.h"

#include <gtest/gtest.h>

#include "config/clsScanSettings.h"
#include "support/TempFolder.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

TEST(clsHome, ChoosesTheMachineInOrder) {
  const test::TempFolder temp;
  EXPECT_EQ(clsHome::Find(temp.Of("made/./home/")).WorkingDatabase(),
            temp.Of("made/home/SandrelTemp.zqd"));
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
