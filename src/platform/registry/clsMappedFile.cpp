#include "platform/registry/clsMappedFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "common/clsError.h"

namespace sandrel {
namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw clsError(errnum::PathFileAccess, fmt::format("Can't read {}: {}", path, reason));
}

[[noreturn]] void FailErrno(const std::string& path) {
  Fail(path, std::generic_category().message(errno));
}

class clsOpenFile {
 public:
  explicit clsOpenFile(const std::string& path)
      : m_file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  ~clsOpenFile() {
    if (m_file >= 0) close(m_file);
  }
  clsOpenFile(const clsOpenFile&) = delete;
  clsOpenFile& operator=(const clsOpenFile&) = delete;
  int Get() const { return m_file; }

 private:
  int m_file;
};

}  // namespace

clsMappedFile::clsMappedFile(const std::string& path) {
  const clsOpenFile file(path);
  struct stat status {};
  if (file.Get() < 0 || fstat(file.Get(), &status) != 0) FailErrno(path);
  if (!S_ISREG(status.st_mode)) Fail(path, "it is no regular file");
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size == 0) return;
  try {
    m_copy = memfd_create("hive", MFD_CLOEXEC);
    if (m_copy < 0 || ftruncate(m_copy, status.st_size) != 0) FailErrno(path);
    void* mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, m_copy, 0);
    if (mapped == MAP_FAILED) FailErrno(path);
    m_bytes = static_cast<char*>(mapped);
    m_size = size;
    for (std::size_t done = 0; done < size;) {
      const ssize_t got = read(file.Get(), m_bytes + done, size - done);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) FailErrno(path);
      if (got == 0) Fail(path, "it became shorter while it was read");
      done += static_cast<std::size_t>(got);
    }
    if (mprotect(m_bytes, size, PROT_READ) != 0) FailErrno(path);
  } catch (...) {
    Close();
    throw;
  }
}

clsMappedFile::~clsMappedFile() {
  Close();
}

void clsMappedFile::Close() {
  if (m_bytes != nullptr) munmap(m_bytes, m_size);
  if (m_copy >= 0) close(m_copy);
}

std::string clsMappedFile::Path() const {
  return fmt::format("/proc/self/fd/{}", m_copy);
}

}  // namespace sandrel
