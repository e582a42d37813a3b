#include "platform/process/clsInstanceLock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

#include "common/clsFileWorks.h"
#include "common/modHash.h"

namespace sandrel {
namespace {

std::string Canonical(const std::string& folder) {
  std::error_code failure;
  auto path =
      std::filesystem::weakly_canonical(std::filesystem::absolute(folder, failure), failure);
  if (failure) return folder;
  if (!path.has_filename()) path = path.parent_path();
  return path.string();
}

// Opens a file of this user alone, or gives -1. Another user's, put there in the shared temporary
// folder, would let that user keep the program from starting.
int OpenOwn(const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600);
  if (file < 0) return -1;
  struct stat status {};
  if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid())
    return file;
  close(file);
  return -1;
}

int OpenLockFile(const std::string& homeFolder) {
  const std::uint64_t hash = StableHash(Canonical(homeFolder));
  const char* const runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
  if (runtimeFolder != nullptr && *runtimeFolder == '/') {
    const int file =
        OpenOwn(clsFileWorks::Join(runtimeFolder, fmt::format("sandrel-{:016x}.lock", hash)));
    if (file >= 0) return file;
  }
  std::error_code failure;
  const auto folder = std::filesystem::temp_directory_path(failure);
  if (failure) return -1;
  return OpenOwn(
      clsFileWorks::Join(folder.string(), fmt::format("sandrel-{}-{:016x}.lock", geteuid(), hash)));
}

}  // namespace

clsInstanceLock::clsInstanceLock(const std::string& homeFolder)
    : m_name(fmt::format("sandrel-{}-{:016x}", geteuid(), StableHash(Canonical(homeFolder)))),
      m_file(OpenLockFile(homeFolder)) {
  if (m_file < 0) return;
  m_prevInstance = flock(m_file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

clsInstanceLock::~clsInstanceLock() {
  if (m_file >= 0) close(m_file);
}

}  // namespace sandrel
