#include "platform/machine/clsFolderListing.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "common/text.h"
#include "platform/machine/modHostNames.h"

namespace sandrel {
namespace {

constexpr std::size_t LongestPath = 32767;  // UTF-16 units

unsigned char TypeOf(mode_t mode) {
  return S_ISDIR(mode) ? DT_DIR : S_ISREG(mode) ? DT_REG : S_ISLNK(mode) ? DT_LNK : DT_CHR;
}

std::uint32_t FoldedHash(std::string_view name) {
  std::uint32_t hash = 2166136261u;
  for (std::size_t i = 0; i < name.size();) {
    hash = (hash ^ static_cast<std::uint32_t>(text::Fold(text::Next(name, i)))) * 16777619u;
  }
  return hash ^ hash >> 15;
}

}  // namespace

int clsFolderListing::Read(const std::string& hostFolder, std::string windowsFolder) {
  m_hostFolder = hostFolder;
  m_windowsFolder = std::move(windowsFolder);
  m_windowsFolderLength = text::Length(m_windowsFolder);
  int failure = m_folder.Open(hostFolder);
  if (failure != 0) return failure;
  struct stat status {};
  if (fstat(m_folder.Descriptor(), &status) != 0) return errno;
  m_stamp = FolderStamp(status);
  int refused = 0;
  failure = m_folder.Read([&](const char* name, unsigned char type) {
    if (m_names.size() > std::numeric_limits<std::uint32_t>::max() - 4096) refused = EFBIG;
    if (refused == 0) refused = Add(name, type);
  });
  if (failure != 0 || refused != 0) return failure != 0 ? failure : refused;
  std::sort(m_entries.begin(), m_entries.end(),
            [this](const Entry& a, const Entry& b) { return std::strcmp(Name(a), Name(b)) < 0; });
  LeaveOutTwins();
  return 0;
}

// Gives 0, or the system's error number when the folder's names can't be told for what they are.
int clsFolderListing::Add(const char* hostName, unsigned char type) {
  if (type == DT_UNKNOWN) {
    struct stat status {};
    if (fstatat(m_folder.Descriptor(), hostName, &status, AT_SYMLINK_NOFOLLOW) != 0) {
      return errno == ENOENT ? 0 : errno;
    }
    type = TypeOf(status.st_mode);
  }
  const bool leftLink = type == DT_LNK && !FollowLink(hostName, type);
  if (!leftLink && type != DT_REG && type != DT_DIR) return 0;

  const std::size_t offset = m_names.size();
  const hostnames::Form form = hostnames::AppendWindowsName(m_names, hostName);
  if (form == hostnames::Form::Impossible) {
    m_leftOut.Add({LeftOut::ImpossibleName, 0, m_windowsFolder, hostName});
    return 0;
  }
  if (leftLink) {
    m_leftOut.Add({LeftOut::LinkedFolder, 0, m_windowsFolder + m_names.substr(offset) + "\\"});
    m_names.resize(offset);
    return 0;
  }
  const bool folder = type == DT_DIR;
  const std::size_t room = LongestPath - std::min(LongestPath, m_windowsFolderLength + folder);
  const std::string_view name = std::string_view(m_names).substr(offset);
  // A name has no more units than bytes, so most need no counting.
  if (name.size() > room && text::Length(name) > room) {
    m_leftOut.Add({LeftOut::LongPath, 0, m_windowsFolder, std::string(name)});
    m_names.resize(offset);
    return 0;
  }
  m_names += '\0';
  m_entries.push_back(
      {static_cast<std::uint32_t>(offset), NotAsked, folder, form == hostnames::Form::Mapped});
  return 0;
}

// Replaces a link's type by what stands behind it. False for a folder, and for nothing at all.
bool clsFolderListing::FollowLink(const char* hostName, unsigned char& type) {
  struct stat status {};
  if (fstatat(m_folder.Descriptor(), hostName, &status, 0) != 0) return false;
  type = TypeOf(status.st_mode);
  return type != DT_DIR;
}

// Of names that are equal but for case the first in byte order stays. A table of entries by the
// hash of their folded names finds them; an entry that stays is never moved behind one that was not
// looked at.
void clsFolderListing::LeaveOutTwins() {
  constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> table(std::bit_ceil(m_entries.size() * 2 + 1), None);
  const std::size_t mask = table.size() - 1;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < m_entries.size(); ++i) {
    const std::string_view name = Name(m_entries[i]);
    std::size_t slot = FoldedHash(name) & mask;
    while (table[slot] != None && !text::EqualNoCase(Name(m_entries[table[slot]]), name)) {
      slot = (slot + 1) & mask;
    }
    if (table[slot] != None) {
      m_leftOut.Add({LeftOut::CaseTwin, 0, m_windowsFolder, std::string(name)});
      continue;
    }
    table[slot] = static_cast<std::uint32_t>(kept);
    m_entries[kept++] = m_entries[i];
  }
  m_entries.resize(kept);
}

void clsFolderListing::HostPath(const Entry& entry, std::string& path) const {
  path = m_hostFolder;
  if (!path.ends_with('/')) path += '/';
  if (entry.Mapped) {
    hostnames::AppendHostName(path, Name(entry));
  } else {
    path += Name(entry);
  }
}

int clsFolderListing::Status(const Entry& entry, struct stat& status) const {
  if (!entry.Mapped) {
    return fstatat(m_folder.Descriptor(), Name(entry), &status, 0) == 0 ? 0 : errno;
  }
  std::string hostName;
  hostnames::AppendHostName(hostName, Name(entry));
  return fstatat(m_folder.Descriptor(), hostName.c_str(), &status, 0) == 0 ? 0 : errno;
}

bool clsFolderListing::IsCurrent() const {
  struct stat status {};
  return fstat(m_folder.Descriptor(), &status) == 0 && FolderStamp(status) == m_stamp;
}

}  // namespace sandrel
