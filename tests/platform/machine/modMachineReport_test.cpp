#include "platform/machine/modMachineReport.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/SampleMachine.h"

namespace sandrel {
namespace {

std::string Lines(const std::string& folder) {
  std::string lines;
  for (const MachineFact& fact : ReportMachine(folder)) lines += fact.Name + " " + fact.Text + "\n";
  return lines;
}

// The whole report of a sound prefix stands in the test of the command line.
TEST(modMachineReport, TellsWhatIsMissing) {
  EXPECT_EQ(Lines("/missing").find("Machine none: There is no Windows machine in /missing"), 0u);

  const test::SampleMachine sample;
  std::ofstream(sample.Folder() + "/user.reg") << "no registry";
  const std::string damaged = Lines(sample.Folder());
  EXPECT_EQ(damaged.find("Machine " + sample.Folder() + " (Wine prefix)\nDrive C: is "), 0u);
  EXPECT_NE(damaged.find("\nNote "), std::string::npos);
  EXPECT_EQ(damaged.find("Hive"), std::string::npos);
}

}  // namespace
}  // namespace sandrel
