#include "platform/process/clsRunOnce.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Places.h"
#include "common/clsFileWorks.h"
#include "support/RunAtLogon.h"
#include "support/TempFolder.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

TEST(RunOnce, EntryStartsTheLauncherWhichRemovesItAndStartsTheProgram) {
  const test::TempFolder temp;
  const test::Variables config{{"XDG_CONFIG_HOME", temp.Of("config")}};
  const std::string program = temp.Of("my \"$HOME\" `prog` 100%\\");
  clsFileWorks::ReplaceWhole(program, "#!/bin/sh\nprintf '%s|' \"$#\" \"$1\" \"$2\" \"$NAME\" > '" +
                                          temp.Of("out") + "'\n");
  chmod(program.c_str(), 0755);
  const clsRunOnce entries;
  EXPECT_EQ(entries.PathOf("zqSandrel"), temp.Of("config/autostart/zqSandrel.desktop"));
  entries.DeleteValue("zqSandrel");
  entries.SetValue("zqSandrel", {SANDREL_ASYNC_STARTUP, program, "/wizard", "page 4"},
                   {"NAME=a $b \\ \"c\"\t%f\n!"});
  ASSERT_TRUE(clsFileWorks::FileExists(entries.PathOf("zqSandrel")));
  EXPECT_EQ(test::RunAtLogon(entries.PathOf("zqSandrel")), 0);
  EXPECT_EQ(clsFileWorks::ReadWhole(temp.Of("out")), "2|/wizard|page 4|a $b \\ \"c\"\t%f\n!|");
  EXPECT_FALSE(clsFileWorks::FileExists(entries.PathOf("zqSandrel")));
}

}  // namespace
}  // namespace sandrel
