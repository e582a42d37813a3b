#include "platform/qt/clsInstanceChannel.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QTest>
#include <vector>

namespace sandrel::test {
namespace {

TEST(clsInstanceChannel, TheRunningProgramHearsWhatASecondStartWants) {
  const std::string name = "sandrel-test-" + std::to_string(getpid());
  EXPECT_FALSE(clsInstanceChannel::Call(name, "/a.mdb"));
  std::vector<std::string> heard;
  clsInstanceChannel channel;
  channel.Called = [&](const std::string& file) { heard.push_back(file); };
  channel.Listen(name);
  for (const std::string file : {"/a b\n\xC3\xA9.mdb", ""}) {
    EXPECT_TRUE(clsInstanceChannel::Call(name, file));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !heard.empty() && heard.back() == file; }));
  }
}

}  // namespace
}  // namespace sandrel::test
