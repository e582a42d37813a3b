#include "platform/process/clsProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>

namespace sandrel {
namespace {

TEST(clsProcess, OneThatNobodyWaitsForLeavesNothingOnceTheNextIsStarted) {
  const auto start = [] { return !clsProcess::Start({{"/bin/true"}, {}}).IsNull(); };
  ASSERT_TRUE(start());
  siginfo_t ended{};
  ASSERT_EQ(waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT), 0);
  ASSERT_TRUE(start());
  EXPECT_NE(kill(ended.si_pid, 0), 0);
}

}  // namespace
}  // namespace sandrel
