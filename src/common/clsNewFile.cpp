#include "common/clsNewFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/clsError.h"
#include "common/modHash.h"

namespace sandrel {
namespace {

// Where the links at `path` lead, whether or not a file stands there.
std::string TargetOf(const std::string& path) {
  constexpr int MostLinks = 40;  // as the system follows
  std::filesystem::path target = path;
  for (int links = 0; links <= MostLinks; ++links) {
    std::error_code failure;
    const std::filesystem::path next = std::filesystem::read_symlink(target, failure);
    if (failure) return target.string();
    target = target.parent_path() / next;
  }
  throw ErrnoError(ELOOP, "Can't write " + path);
}

// A database in the making has a journal.
void DeleteJournal(int folder, const std::string& path) {
  unlinkat(folder, (path + "-journal").c_str(), 0);
}

clsError Refusal(const std::string& path, std::string_view why) {
  return {errnum::PathFileAccess, fmt::format("Can't write {}: {}", path, why)};
}

// What the system gives a new file.
mode_t NewFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666u & ~mask;
}

bool IsSame(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

// As short for a name of the greatest length as for any other.
std::string clsNewFile::PlaceBeside(const std::string& target) {
  const std::filesystem::path path = target;
  const std::uint64_t hash = StableHash(path.filename().string());
  return (path.parent_path() / fmt::format(".sandrel-{:016x}", hash)).string();
}

clsNewFile::clsNewFile(const std::string& path)
    : m_shown(path), m_folder(AT_FDCWD), m_target(TargetOf(path)) {
  Begin(0);
}

clsNewFile::clsNewFile(int folder, const std::string& name, const std::string& shown)
    : m_shown(shown), m_folder(folder), m_target(name) {
  Begin(AT_SYMLINK_NOFOLLOW);
}

void clsNewFile::Begin(int linkFlag) {
  struct stat status {};
  const bool exists =
      fstatat(m_folder, m_target.c_str(), &status, linkFlag) == 0 && !S_ISLNK(status.st_mode);
  if (exists) {
    // A device would be replaced where root writes.
    if (!S_ISREG(status.st_mode)) throw Refusal(m_shown, "it is no regular file");
    if (faccessat(m_folder, m_target.c_str(), W_OK, 0) != 0) {
      throw ErrnoError(errno, "Can't write " + m_shown);
    }
  }
  m_path = PlaceBeside(m_target);
  while (!OpenLocked()) {
  }
  // Another user's file stays that user's where this process may see to it.
  [[maybe_unused]] const int owned =
      exists ? fchown(m_descriptor, status.st_uid, status.st_gid) : 0;
  const mode_t mode = exists ? status.st_mode & 07777u : NewFileMode();
  if (fchmod(m_descriptor, mode) != 0 || ftruncate(m_descriptor, 0) != 0) {
    const int failure = errno;
    Discard();
    throw ErrnoError(failure, "Can't write " + m_shown);
  }
  DeleteJournal(m_folder, m_path);
}

// False when the file that was opened had been put in its place, or deleted, by the time that it
// was locked.
bool clsNewFile::OpenLocked() {
  m_descriptor = openat(m_folder, m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (m_descriptor < 0) throw ErrnoError(errno, "Can't write " + m_shown);
  struct stat opened {};
  struct stat present {};
  if (flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
    close(std::exchange(m_descriptor, -1));
    throw Refusal(m_shown, "another program is writing it. Wait until it has ended");
  }
  if (fstat(m_descriptor, &opened) == 0 &&
      fstatat(m_folder, m_path.c_str(), &present, AT_SYMLINK_NOFOLLOW) == 0 &&
      IsSame(opened, present)) {
    return true;
  }
  close(std::exchange(m_descriptor, -1));
  return false;
}

clsNewFile::~clsNewFile() {
  Discard();
}

void clsNewFile::Discard() {
  if (m_descriptor < 0) return;
  unlinkat(m_folder, m_path.c_str(), 0);
  DeleteJournal(m_folder, m_path);
  close(std::exchange(m_descriptor, -1));
}

void clsNewFile::CopyFrom(const std::string& source) {
  std::error_code failure;
  std::filesystem::copy_file(source, m_path, std::filesystem::copy_options::overwrite_existing,
                             failure);
  if (failure)
    throw ErrnoError(failure.value(), fmt::format("Can't copy {} to {}", source, m_path));
}

void clsNewFile::Commit() {
  if (fsync(m_descriptor) != 0) throw ErrnoError(errno, "Can't write " + m_shown);
  if (renameat(m_folder, m_path.c_str(), m_folder, m_target.c_str()) != 0) {
    throw ErrnoError(errno, "Can't replace " + m_shown);
  }
  close(std::exchange(m_descriptor, -1));
  // That the name has changed is on disk too; where a folder can't be waited for, it comes later.
  const std::string folder = std::filesystem::path(m_target).parent_path().string();
  const int place =
      openat(m_folder, folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (place < 0) return;
  fsync(place);
  close(place);
}

}  // namespace sandrel
