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
  const std::string name = clsRunOnce::WizardEntry("/my home");
  EXPECT_NE(name, clsRunOnce::WizardEntry("/other home")) << "each home has its own wizard";
  EXPECT_EQ(entries.PathOf(name), temp.Of("config/autostart/" + name + ".desktop"));
  entries.DeleteValue(name);
  entries.SetValue(name, {SANDREL_ASYNC_STARTUP, program, "/wizard", "page 4"},
                   {"SANDREL_HOME=/my home", "NAME=a $b \\ \"c\"\t%f\n!"});
  ASSERT_TRUE(clsFileWorks::FileExists(entries.PathOf(name)));
  EXPECT_EQ(test::RunAtLogon(entries.PathOf(name)), 0);
  EXPECT_EQ(clsFileWorks::ReadWhole(temp.Of("out")), "2|/wizard|page 4|a $b \\ \"c\"\t%f\n!|");
  EXPECT_FALSE(clsFileWorks::FileExists(entries.PathOf(name)));
}

}  // namespace
}  // namespace sandrel
