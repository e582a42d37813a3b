#include "common/clsFileWorks.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "common/clsError.h"
#include "common/clsNewFile.h"

namespace sandrel {
namespace {

class clsDescriptor {
 public:
  explicit clsDescriptor(int descriptor) : m_descriptor(descriptor) {}
  ~clsDescriptor() { Close(); }
  clsDescriptor(const clsDescriptor&) = delete;
  clsDescriptor& operator=(const clsDescriptor&) = delete;
  int Get() const { return m_descriptor; }
  int Close() {
    const int result = m_descriptor < 0 ? 0 : close(m_descriptor);
    m_descriptor = -1;
    return result;
  }

 private:
  int m_descriptor;
};

clsError ReadError(const std::string& path) {
  return {errnum::PathFileAccess,
          fmt::format("Can't read {}: {}", path, std::generic_category().message(errno))};
}

void WriteAll(int descriptor, std::string_view content, const std::string& path) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw ErrnoError(errno, "Can't write " + path);
    content.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

bool clsFileWorks::FileExists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string clsFileWorks::Identity(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return fmt::format("{}:{}", status.st_dev, status.st_ino);
}

std::string clsFileWorks::ExpandHome(const std::string& path) {
  const char* const home = std::getenv("HOME");
  if (home == nullptr || !path.starts_with("~/")) return path;
  return Join(home, path.substr(2));
}

std::string clsFileWorks::Refusal(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) return std::generic_category().message(errno);
  close(file);
  return {};
}

bool clsFileWorks::FolderExists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string clsFileWorks::ReadWhole(const std::string& path, std::uint64_t limit) {
  // A fifo without a writer would block for ever; what is no regular file is refused below.
  const clsDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (file.Get() < 0 || fstat(file.Get(), &status) != 0) throw ReadError(path);
  if (!S_ISREG(status.st_mode)) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't read {}: it is no regular file", path));
  }
  if (static_cast<std::uint64_t>(status.st_size) > limit) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't read {}: it is larger than {} MiB", path, limit >> 20));
  }
  std::string content;
  content.resize(static_cast<std::size_t>(status.st_size));
  std::size_t done = 0;
  for (;;) {
    if (done == content.size()) {
      // The size is a hint only: a file that grows meanwhile is read to its end.
      if (done > limit) return content;
      content.resize(done + 4096);
    }
    const ssize_t got = read(file.Get(), content.data() + done, content.size() - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw ReadError(path);
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  content.resize(done);
  return content;
}

void clsFileWorks::ReplaceWhole(const std::string& path, std::string_view content) {
  clsNewFile file(path);
  WriteAll(file.Descriptor(), content, path);
  file.Commit();
}

bool clsFileWorks::IsSameFile(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  if (stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0) {
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
  }
  std::error_code failure;
  return std::filesystem::weakly_canonical(a, failure) ==
         std::filesystem::weakly_canonical(b, failure);
}

void clsFileWorks::Sync(const std::string& path) {
  const clsDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.Get() < 0 || fdatasync(file.Get()) != 0) throw ErrnoError(errno, "Can't write " + path);
}

void clsFileWorks::DeleteFile(const std::string& path) {
  if (unlink(path.c_str()) != 0 && errno != ENOENT) {
    throw ErrnoError(errno, "Can't delete " + path);
  }
}

void clsFileWorks::MakeFolders(const std::string& path) {
  std::error_code failure;
  std::filesystem::create_directories(path, failure);
  if (failure) throw ErrnoError(failure.value(), "Can't make the folder " + path);
}

std::string clsFileWorks::Absolute(const std::string& path) {
  std::error_code failure;
  const auto absolute = std::filesystem::absolute(path, failure).lexically_normal();
  return failure ? path : absolute.string();
}

std::string clsFileWorks::Join(std::string_view folder, std::string_view name) {
  std::string result(folder);
  if (!result.ends_with('/')) result += '/';
  while (name.starts_with('/')) name.remove_prefix(1);
  result += name;
  return result;
}

}  // namespace sandrel
