#include "platform/registry/wineserver.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/text.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {
namespace {

// True when another process holds the first byte locked, as a server does while it runs.
bool IsLocked(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return false;
  struct flock lock {};
  lock.l_type = F_RDLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = 0;
  lock.l_len = 1;
  const bool locked = fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
  close(file);
  return locked;
}

// Debian's build makes a folder of a random name and notes it in the prefix's file "wineserver".
std::string NotedFolder(const std::string& folder) {
  constexpr std::uint64_t LongestNote = 255;
  try {
    std::string note =
        clsFileWorks::ReadWhole(clsFileWorks::Join(folder, "wineserver"), LongestNote);
    while (!note.empty() && (note.back() == '\n' || note.back() == '\0')) note.pop_back();
    return note.find_first_of(std::string_view("/\0", 2)) == std::string::npos ? note
                                                                               : std::string();
  } catch (const clsError&) {
    return {};
  }
}

}  // namespace

std::vector<std::string> wineserver::LockFiles(const std::string& folder) {
  struct stat status {};
  if (stat(folder.c_str(), &status) != 0) return {};
  const std::string server =
      fmt::format("server-{:x}-{:x}/lock", static_cast<std::uint64_t>(status.st_dev),
                  static_cast<std::uint64_t>(status.st_ino));
  std::vector<std::string> files{fmt::format("/tmp/.wine-{}/{}", status.st_uid, server)};
  const std::string noted = NotedFolder(folder);
  if (!noted.empty()) files.push_back(fmt::format("/tmp/{}/{}", noted, server));
  return files;
}

bool PrefixServerRuns(const std::string& folder) {
  for (const std::string& file : wineserver::LockFiles(folder)) {
    if (IsLocked(file)) return true;
  }
  return false;
}

}  // namespace sandrel
