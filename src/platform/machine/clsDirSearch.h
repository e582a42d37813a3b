// A directory search of one folder, and the details of what it gives.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

#include "common/clsError.h"
#include "common/clsLeftOut.h"
#include "platform/machine/clsAttributes.h"
#include "platform/machine/clsFolderListing.h"

namespace sandrel {

/// File attribute bits of the platform; also the mask of a directory search.
namespace fileattr {
inline constexpr int ReadOnly = 1;
inline constexpr int Hidden = 2;
inline constexpr int System = 4;
inline constexpr int Volume = 8;
inline constexpr int Directory = 16;
inline constexpr int Archive = 32;
/// The search for files: read-only, hidden, system and archive ones, no folders.
inline constexpr int Files = ReadOnly | Hidden | System | Archive;
}  // namespace fileattr

/// The search for the folders that a walk enters, among them hidden and system ones or not.
inline constexpr int SubfolderMask(bool hidden) {
  return hidden ? fileattr::Directory | fileattr::Hidden | fileattr::System : fileattr::Directory;
}

/// Details of one file or folder, from one look at the disk.
struct FileDetails {
  std::time_t LastWritten = 0;  ///< UTC seconds
  std::uint64_t Length = 0;     ///< bytes; 0 for a folder
  int Attributes = 0;           ///< bits of fileattr and others as stored, below 32768
  std::uint64_t Device = 0;  ///< the host's device and inode, which name the file whatever its path
  std::uint64_t Inode = 0;
};

/// What all searches of one machine share.
struct SearchShare {
  clsAttributes Attributes;
};

/// Gives every name of a folder that Windows would give, once, in byte order. Made by
/// clsMachine::Dir; may outlive the machine.
class clsDirSearch {
 public:
  /// Searches `listing` with `mask` (see clsMachine::Dir).
  clsDirSearch(std::shared_ptr<clsFolderListing> listing, int mask,
               std::shared_ptr<SearchShare> share);

  /// The next name; false when the search has ended.
  bool Next(std::string& name);

  /// Details of the item that `Next` gave last. Raises 75 when it has vanished or can't be read.
  FileDetails Details() const;

  /// What was left out so far: by a search for files the names that can't be given, by one for
  /// folders the folders that are not entered.
  const clsLeftOut& LeftOutItems() const;

  /// Host path of the item that `Next` gave last.
  std::string HostPath() const;

  /// True when the item that `Next` gave last is a folder.
  bool IsFolder() const;

 private:
  bool IsGiven(clsFolderListing::Entry& entry);
  void LeaveOut(const clsFolderListing::Entry& entry, LeftOut kind, int reason = 0);
  int AttributesOf(clsFolderListing::Entry& entry, const struct stat& status) const;

  std::shared_ptr<clsFolderListing> m_listing;
  std::shared_ptr<SearchShare> m_share;
  clsLeftOut m_leftOut;
  int m_mask;
  std::size_t m_next = 0;
  clsFolderListing::Entry* m_given = nullptr;
  mutable std::string m_path;  // reused: the host path of the item looked at
};

/// The details in `status`, with the given attributes.
FileDetails DetailsOf(const struct stat& status, int attributes);

/// Error 75 for the Windows path `path`, with the system's reason for the error number `reason`.
clsError AccessError(std::string_view path, int reason);

}  // namespace sandrel
