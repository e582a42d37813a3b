#include "platform/process/modDisplay.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <fstream>

#include "support/TempFolder.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

TEST(modDisplay, TellsWhetherAWindowCanBeShown) {
  const test::TempFolder folder;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, folder.Of("way").c_str(), sizeof(address.sun_path) - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  std::ofstream(folder.Of("file")) << "no socket";

  const std::string& run = folder.Path();
  const std::optional<std::string> none;
  const struct {
    std::optional<std::string> Platform, Display, Wayland, RunFolder;
    bool CanShow;
  } cases[] = {
      {none, none, none, run, false},      {"offscreen", none, none, none, true},
      {"xcb", ":65000", "", run, false},  // no server there
      {"wayland", none, "way", run, true}, {"", none, folder.Of("way"), none, true},
      {none, none, "way", none, false},    {"wayland", none, "file", run, false},
  };
  for (const auto& one : cases) {
    const test::Variables variables{{"QT_QPA_PLATFORM", one.Platform},
                                    {"DISPLAY", one.Display},
                                    {"WAYLAND_DISPLAY", one.Wayland},
                                    {"XDG_RUNTIME_DIR", one.RunFolder}};
    const std::string problem = DisplayProblem();
    EXPECT_EQ(problem.empty(), one.CanShow) << &one - cases;
    EXPECT_EQ(problem.find("sandrel-cli") != std::string::npos, !one.CanShow) << &one - cases;
  }
  close(listener);
}

}  // namespace
}  // namespace sandrel
