#include "platform/machine/clsDirSearch.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/machine/modKernelFolders.h"

namespace sandrel {

FileDetails DetailsOf(const struct stat& status, int attributes) {
  FileDetails details;
  details.LastWritten = status.st_mtim.tv_sec;
  details.Device = status.st_dev;
  details.Inode = status.st_ino;
  details.Length = S_ISDIR(status.st_mode) ? 0 : static_cast<std::uint64_t>(status.st_size);
  details.Attributes = attributes;
  return details;
}

clsError AccessError(std::string_view path, int reason) {
  return {errnum::PathFileAccess, fmt::format("Path/File access error: {} ({})", path,
                                              std::generic_category().message(reason))};
}

clsDirSearch::clsDirSearch(std::shared_ptr<clsFolderListing> listing, int mask,
                           std::shared_ptr<SearchShare> share)
    : m_listing(std::move(listing)), m_share(std::move(share)), m_mask(mask) {}

const clsLeftOut& clsDirSearch::LeftOutItems() const {
  return (m_mask & fileattr::Directory) == 0 ? m_listing->LeftOutItems() : m_leftOut;
}

void clsDirSearch::LeaveOut(const clsFolderListing::Entry& entry, LeftOut kind, int reason) {
  m_leftOut.Add({kind, 0, m_listing->WindowsFolder() + m_listing->Name(entry) + "\\", "",
                 reason == 0 ? "" : std::generic_category().message(reason)});
}

bool clsDirSearch::Next(std::string& name) {
  std::vector<clsFolderListing::Entry>& entries = m_listing->Entries();
  m_given = nullptr;
  while (m_next < entries.size()) {
    clsFolderListing::Entry& entry = entries[m_next++];
    if (!IsGiven(entry)) continue;
    m_given = &entry;
    name = m_listing->Name(entry);
    return true;
  }
  return false;
}

// The platform's rule: an item is given unless it is hidden, a system one or a folder and the mask
// doesn't ask for those.
bool clsDirSearch::IsGiven(clsFolderListing::Entry& entry) {
  if (entry.Folder && (m_mask & fileattr::Directory) == 0) return false;
  const int refused = (fileattr::Hidden | fileattr::System) & ~m_mask;
  const bool known = entry.Attributes != clsFolderListing::NotAsked;
  if (!entry.Folder && (refused == 0 || known)) return (entry.Attributes & refused) == 0;
  struct stat status {};
  // Who asks for details of a file that can't be looked at hears of it.
  if (const int reason = m_listing->Status(entry, status); reason != 0) {
    const bool gone = reason == ENOENT || reason == ENOTDIR;
    if (entry.Folder) {
      LeaveOut(entry, gone ? LeftOut::VanishedFolder : LeftOut::UnreadableFolder, reason);
    }
    return !entry.Folder;
  }
  if (entry.Folder && status.st_dev != m_listing->Device()) {
    m_listing->HostPath(entry, m_path);
    if (IsKernelFolder(m_path, status.st_dev)) {
      LeaveOut(entry, LeftOut::KernelFolder);
      return false;
    }
  }
  if ((AttributesOf(entry, status) & refused) == 0) return true;
  if (entry.Folder) LeaveOut(entry, LeftOut::HiddenFolder);
  return false;
}

int clsDirSearch::AttributesOf(clsFolderListing::Entry& entry, const struct stat& status) const {
  if (entry.Attributes == clsFolderListing::NotAsked) {
    m_listing->HostPath(entry, m_path);
    entry.Attributes = static_cast<std::uint16_t>(
        m_share->Attributes.Of(status, m_path.c_str(), m_listing->Name(entry)));
  }
  return entry.Attributes;
}

FileDetails clsDirSearch::Details() const {
  struct stat status {};
  const int failure = m_given == nullptr ? ENOENT : m_listing->Status(*m_given, status);
  if (failure != 0) {
    const char* name = m_given == nullptr ? "" : m_listing->Name(*m_given);
    throw AccessError(m_listing->WindowsFolder() + name, failure);
  }
  return DetailsOf(status, AttributesOf(*m_given, status));
}

std::string clsDirSearch::HostPath() const {
  if (m_given == nullptr) return m_listing->HostFolder();
  m_listing->HostPath(*m_given, m_path);
  return m_path;
}

bool clsDirSearch::IsFolder() const {
  return m_given != nullptr && m_given->Folder;
}

}  // namespace sandrel
