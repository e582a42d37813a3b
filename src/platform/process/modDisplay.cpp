#include "platform/process/modDisplay.h"

#include <sys/stat.h>

#include <cstdlib>

#include "common/clsFileWorks.h"
#include "platform/process/clsTopWindows.h"

namespace sandrel {
namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool HasWayland() {
  const std::string name = Variable("WAYLAND_DISPLAY");
  if (name.empty()) return false;
  const std::string folder = Variable("XDG_RUNTIME_DIR");
  if (!name.starts_with('/') && folder.empty()) return false;
  const std::string path = name.starts_with('/') ? name : clsFileWorks::Join(folder, name);
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
}

}  // namespace

std::string DisplayProblem() {
  const std::string platform = Variable("QT_QPA_PLATFORM");
  if (!platform.empty() && platform != "xcb" && platform != "wayland") return {};
  if (clsTopWindows().HasDisplay() || HasWayland()) return {};
  return "Sandrel needs a display to show its window; without one, use sandrel-cli.";
}

}  // namespace sandrel
