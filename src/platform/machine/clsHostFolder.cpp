#include "platform/machine/clsHostFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

namespace sandrel {
namespace {

constexpr std::size_t BlockSize = 64 * 1024;
constexpr std::time_t SettlingSeconds = 2;  // as coarse as the times of FAT

bool Same(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

bool FolderStamp::operator==(const FolderStamp& other) const {
  return Device == other.Device && Inode == other.Inode && Same(Modified, other.Modified) &&
         Same(Changed, other.Changed);
}

bool FolderStamp::Settled() const {
  const std::time_t now = std::time(nullptr);
  return now - Modified.tv_sec > SettlingSeconds && now - Changed.tv_sec > SettlingSeconds;
}

int clsHostFolder::Open(const std::string& path) {
  Close();
  m_descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  return m_descriptor < 0 ? errno : 0;
}

void clsHostFolder::Close() {
  if (m_descriptor >= 0) close(m_descriptor);
  m_descriptor = -1;
  m_at = m_end = 0;
}

bool clsHostFolder::Next(const char*& name, unsigned char& type, int& failure) {
  for (;;) {
    if (m_at == m_end) {
      if (!m_block) m_block = std::make_unique_for_overwrite<char[]>(BlockSize);
      const ssize_t got = getdents64(m_descriptor, m_block.get(), BlockSize);
      // A folder that was removed while it was read has no more entries.
      if (got < 0 && errno != ENOENT) failure = errno;
      if (got <= 0) {
        m_block.reset();
        return false;
      }
      m_at = 0;
      m_end = static_cast<std::size_t>(got);
    }
    const auto* entry = reinterpret_cast<const dirent64*>(m_block.get() + m_at);
    m_at += entry->d_reclen;
    name = entry->d_name;
    type = entry->d_type;
    if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) return true;
  }
}

}  // namespace sandrel
