#include "platform/machine/clsServerWait.h"

#include <gtest/gtest.h>

namespace sandrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// A prefix whose clock runs only while somebody sleeps.
struct Prefix {
  std::chrono::steady_clock::time_point Now{};
  milliseconds Slept{0};
  milliseconds LongestSleep{0};
  milliseconds ServerEnds{seconds(1000)};
  std::vector<milliseconds> Writes;

  clsServerWait::Surroundings Surroundings() {
    return {[this] { return Slept < ServerEnds; },
            [this] {
              std::size_t done = 0;
              for (const milliseconds write : Writes) done += write <= Slept ? 1 : 0;
              return std::to_string(done);
            },
            [this] { return Now; },
            [this](milliseconds time) {
              Now += time;
              Slept += time;
              LongestSleep = std::max(LongestSleep, time);
            }};
  }
  bool Wait(int callsUntilCancel = 1 << 30) {
    int calls = 0;
    return clsServerWait(Surroundings()).Wait([&] { return ++calls < callsUntilCancel; });
  }
};

TEST(clsServerWait, EndsWithTheServerTheFilesOrTheTime) {
  Prefix ends;
  ends.ServerEnds = seconds(3);
  EXPECT_TRUE(ends.Wait());
  EXPECT_EQ(ends.Slept, seconds(3));
  Prefix idle;
  EXPECT_TRUE(idle.Wait());
  EXPECT_EQ(idle.Slept, seconds(35));
  EXPECT_LE(idle.LongestSleep, milliseconds(50));

  Prefix writes;
  writes.Writes = {seconds(2), milliseconds(2200)};  // the second file follows the first
  EXPECT_TRUE(writes.Wait());
  EXPECT_GE(writes.Slept, milliseconds(2200));
  EXPECT_LT(writes.Slept, seconds(3));

  Prefix cancelled;
  EXPECT_FALSE(cancelled.Wait(5));
  EXPECT_EQ(cancelled.Slept, milliseconds(200));
}

}  // namespace
}  // namespace sandrel
