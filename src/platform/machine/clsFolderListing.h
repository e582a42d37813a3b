// The names of one folder as Windows would give them, read from the disk in one go.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/clsLeftOut.h"
#include "platform/machine/clsHostFolder.h"

namespace sandrel {

class clsFolderListing {
 public:
  static constexpr std::uint16_t NotAsked = 0xFFFF;

  struct Entry {
    std::uint32_t Offset;      // of the name in the buffer of names
    std::uint16_t Attributes;  // NotAsked until somebody needs them
    bool Folder : 1;
    bool Mapped : 1;  // the host name has other bytes
  };

  /// Reads the folder at the host path `hostFolder`, known as `windowsFolder` (with its trailing
  /// backslash). Gives 0, or the system's error number when it can't be read whole.
  ///
  /// Entries are files, links to files and folders, in byte order of their names. Names that
  /// Windows can't have, paths above 32,767 UTF-16 units (a folder's with its trailing backslash),
  /// names that equal an earlier one but for case, and links to folders are left out and told.
  /// Sockets, devices and fifos are no files and not told.
  int Read(const std::string& hostFolder, std::string windowsFolder);

  std::vector<Entry>& Entries() { return m_entries; }
  const clsLeftOut& LeftOutItems() const { return m_leftOut; }

  const std::string& HostFolder() const { return m_hostFolder; }
  const std::string& WindowsFolder() const { return m_windowsFolder; }
  /// The entry's Windows name; stays where it is as long as the listing.
  const char* Name(const Entry& entry) const { return m_names.data() + entry.Offset; }
  /// Puts the entry's host path in the place of `path`.
  void HostPath(const Entry& entry, std::string& path) const;
  /// Details behind the entry's link, if it is one. Gives 0, or the system's error number.
  int Status(const Entry& entry, struct stat& status) const;

  std::uint64_t Device() const { return m_stamp.Device; }
  /// True when nothing was added to or removed from the folder since it was read.
  bool IsCurrent() const;

 private:
  int Add(const char* hostName, unsigned char type);
  bool FollowLink(const char* hostName, unsigned char& type);
  void LeaveOutTwins();

  std::string m_hostFolder;
  std::string m_windowsFolder;
  std::size_t m_windowsFolderLength = 0;  // UTF-16 units
  clsHostFolder m_folder;
  FolderStamp m_stamp;
  std::string m_names;  // one buffer, each name with its NUL: a million names take one allocation
  std::vector<Entry> m_entries;
  clsLeftOut m_leftOut;
};

}  // namespace sandrel
