#include "platform/registry/clsMappedFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include "common/clsError.h"

namespace sandrel {
namespace {

constexpr std::size_t BlockSize = 256 << 10;

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

// Block by block, which costs less than reading into the mapped copy: that faults at every page.
void CopyContent(int from, int to, std::size_t size, const std::string& path) {
  std::vector<char> block(BlockSize);
  while (size > 0) {
    const ssize_t got = read(from, block.data(), std::min(size, block.size()));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailErrno(path);
    if (got == 0) Fail(path, "it became shorter while it was read");
    for (ssize_t done = 0; done < got;) {
      const ssize_t written = write(to, block.data() + done, static_cast<std::size_t>(got - done));
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) FailErrno(path);
      done += written;
    }
    size -= static_cast<std::size_t>(got);
  }
}

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
    if (m_copy < 0) FailErrno(path);
    CopyContent(file.Get(), m_copy, size, path);
    void* mapped = mmap(nullptr, size, PROT_READ, MAP_SHARED, m_copy, 0);
    if (mapped == MAP_FAILED) FailErrno(path);
    m_bytes = static_cast<const char*>(mapped);
    m_size = size;
  } catch (...) {
    Close();
    throw;
  }
}

clsMappedFile::~clsMappedFile() {
  Close();
}

void clsMappedFile::Close() {
  if (m_bytes != nullptr) munmap(const_cast<char*>(m_bytes), m_size);
  if (m_copy >= 0) close(m_copy);
}

std::string clsMappedFile::Path() const {
  return fmt::format("/proc/self/fd/{}", m_copy);
}

}  // namespace sandrel
