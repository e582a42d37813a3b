#include "platform/machine/clsPathMap.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>

#include "common/clsFileWorks.h"
#include "common/text.h"
#include "platform/machine/modHostNames.h"

namespace sandrel {
namespace {

constexpr std::size_t MostRemembered = 4096;

bool Exists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

std::string WithoutSlash(std::string path) {
  while (path.ends_with('/')) path.pop_back();
  return path;
}

// The path without links, as far as it exists, and without a trailing slash, so empty for "/".
// Where that can't be found out, the path as it is.
std::string RealPath(const std::string& path) {
  std::error_code failure;
  const std::filesystem::path real = std::filesystem::weakly_canonical(path, failure);
  return WithoutSlash(failure ? path : real.string());
}

// The letter, in upper case, of a drive's name as "c:"; 0 for any other text.
char DriveLetter(std::string_view name) {
  if (name.size() != 2 || name[1] != ':') return 0;
  const char letter = name[0];
  if (letter >= 'a' && letter <= 'z') return static_cast<char>(letter - 32);
  return letter >= 'A' && letter <= 'Z' ? letter : '\0';
}

// The parts of a Windows path behind its drive, with "." and ".." worked in as Windows does, before
// it asks the disk.
std::vector<std::string_view> Parts(std::string_view path) {
  std::vector<std::string_view> parts;
  while (!path.empty()) {
    const std::size_t end = path.find_first_of("\\/");
    const std::string_view part = path.substr(0, end);
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      parts.push_back(part);
    } else if (!parts.empty()) {
      parts.pop_back();
    }
  }
  return parts;
}

bool AppendPart(std::string& hostPath, std::string_view part) {
  hostPath += '/';
  return hostnames::AppendHostName(hostPath, part);
}

std::string OrRoot(const std::string& path) {
  return path.empty() ? "/" : path;
}

// Nothing when a name on the way is none for Windows.
std::optional<std::string> WindowsPathBelow(char drive, std::string_view rest) {
  std::string path{drive, ':', '\\'};
  while (!rest.empty()) {
    rest.remove_prefix(1);
    const std::size_t end = std::min(rest.find('/'), rest.size());
    if (!path.ends_with('\\')) path += '\\';
    if (hostnames::AppendWindowsName(path, rest.substr(0, end)) == hostnames::Form::Impossible) {
      return {};
    }
    rest.remove_prefix(end);
  }
  return path;
}

}  // namespace

std::string FindNameNoCase(const std::string& hostFolder, std::string_view windowsName) {
  clsHostFolder folder;
  if (folder.Open(OrRoot(hostFolder)) != 0) return {};
  std::string best;  // a Windows name, as the order of names is theirs
  std::string hostName;
  std::string name;
  folder.Read([&](const char* entry, unsigned char) {
    name.clear();
    if (hostnames::AppendWindowsName(name, entry) == hostnames::Form::Impossible) return;
    if (!text::EqualNoCase(name, windowsName) || (!best.empty() && name >= best)) return;
    if (!Exists(hostFolder + "/" + entry)) return;
    best = name;
    hostName = entry;
  });
  return hostName;
}

clsPathMap::clsPathMap(std::string devices, std::vector<Drive> drives)
    : m_devices(std::move(devices)), m_drives(std::move(drives)) {}

clsPathMap clsPathMap::OfPrefix(const std::string& folder) {
  const std::string devices = clsFileWorks::Join(folder, "dosdevices");
  clsPathMap map = OfVolume(clsFileWorks::Join(folder, "drive_c"));
  if (clsFileWorks::FolderExists(devices)) map.m_devices = devices;
  map.m_systemDrive = map.m_drives.front();
  return map;
}

clsPathMap clsPathMap::OfVolume(const std::string& folder) {
  return clsPathMap({}, {Drive{'C', RealPath(folder)}});
}

void clsPathMap::ReadDrives() {
  m_drives.clear();
  clsHostFolder folder;
  if (folder.Open(m_devices) != 0) return;
  folder.Read([&](const char* name, unsigned char) {
    // Drives have lower-case names; other entries are devices ("c::", "com1").
    const char letter = DriveLetter(name);
    const std::string link = m_devices + "/" + name;
    if (letter == 0 || letter == name[0] || !clsFileWorks::FolderExists(link)) return;
    m_drives.push_back({letter, RealPath(link)});
  });
  // A prefix that was copied without its links still has its C:.
  if (m_systemDrive && std::none_of(m_drives.begin(), m_drives.end(),
                                    [](const Drive& drive) { return drive.Letter == 'C'; })) {
    m_drives.push_back(*m_systemDrive);
  }
  std::sort(m_drives.begin(), m_drives.end(),
            [](const Drive& a, const Drive& b) { return a.Letter < b.Letter; });
}

const std::vector<clsPathMap::Drive>& clsPathMap::CurrentDrives() {
  if (m_devices.empty()) return m_drives;
  struct stat status {};
  if (stat(m_devices.c_str(), &status) != 0) {
    m_drives.clear();
    m_devicesStamp = {};
    return m_drives;
  }
  const FolderStamp stamp(status);
  if (!(stamp == m_devicesStamp)) {
    ReadDrives();
    // Links may follow that leave the same times behind; then the drives are read again.
    m_devicesStamp = stamp.Settled() ? stamp : FolderStamp();
  }
  return m_drives;
}

std::vector<std::string> clsPathMap::Drives() {
  m_devicesStamp = {};  // a link's own target may have come or gone
  std::vector<std::string> result;
  for (const Drive& drive : CurrentDrives()) {
    if (clsFileWorks::FolderExists(OrRoot(drive.Root))) {
      result.push_back(std::string(1, drive.Letter) + ":");
    }
  }
  return result;
}

const clsPathMap::Drive* clsPathMap::DriveOf(std::string_view windowsPath) {
  const char letter = DriveLetter(windowsPath.substr(0, 2));
  if (letter == 0 || windowsPath.find('\0') != std::string_view::npos) return nullptr;
  if (windowsPath.size() > 2 && windowsPath[2] != '\\' && windowsPath[2] != '/') return nullptr;
  for (const Drive& drive : CurrentDrives()) {
    if (drive.Letter == letter) return &drive;
  }
  return nullptr;
}

std::optional<std::string> clsPathMap::ExactHostPath(std::string_view windowsPath) {
  const Drive* drive = DriveOf(windowsPath);
  if (drive == nullptr) return {};
  std::string path = drive->Root;
  for (const std::string_view part : Parts(windowsPath.substr(2))) {
    if (!AppendPart(path, part)) return {};
  }
  return OrRoot(path);
}

std::optional<std::string> clsPathMap::HostPath(std::string_view windowsPath, int* reason) {
  int ignored = 0;
  int& why = reason != nullptr ? *reason : ignored;
  why = ENOENT;
  std::optional<std::string> exact = ExactHostPath(windowsPath);
  if (!exact || Exists(*exact)) return exact;

  const Drive* drive = DriveOf(windowsPath);
  if (drive == nullptr) return {};
  std::string path = drive->Root;
  for (const std::string_view part : Parts(windowsPath.substr(2))) {
    const std::size_t folderEnd = path.size();
    AppendPart(path, part);
    if (Exists(path)) continue;
    why = errno;
    path.resize(folderEnd);
    const std::string name = FindName(path, part);
    if (name.empty()) return {};
    path += '/';
    path += name;
  }
  return OrRoot(path);
}

std::string clsPathMap::FindName(const std::string& hostFolder, std::string_view windowsName) {
  struct stat status {};
  if (stat(OrRoot(hostFolder).c_str(), &status) != 0) return {};
  const FolderStamp stamp(status);
  std::string key = hostFolder;
  key += '/';
  key += windowsName;
  const auto found = m_found.find(key);
  if (found != m_found.end() && found->second.Folder == stamp) return found->second.HostName;
  std::string name = FindNameNoCase(hostFolder, windowsName);
  if (stamp.Settled()) {
    if (m_found.size() >= MostRemembered) m_found.clear();
    m_found[std::move(key)] = {stamp, name};
  }
  return name;
}

std::vector<std::string> clsPathMap::WindowsPaths(const std::string& hostPath) {
  std::error_code failure;
  const std::filesystem::path absolute = std::filesystem::absolute(hostPath, failure);
  if (failure || hostPath.empty()) return {};
  // A file below a link in a drive belongs to that drive, though it really lies elsewhere; a path
  // that gets to a drive through a link of its own belongs there too.
  const std::string plain = WithoutSlash(absolute.lexically_normal().string());
  const std::string real = RealPath(plain);
  std::vector<std::pair<std::size_t, std::string>> found;  // with the length of the drive's root
  for (const Drive& drive : CurrentDrives()) {
    for (const std::string* candidate : {&plain, &real}) {
      const bool holds =
          candidate->starts_with(drive.Root) &&
          (candidate->size() == drive.Root.size() || (*candidate)[drive.Root.size()] == '/');
      if (!holds) continue;
      const std::string_view rest = std::string_view(*candidate).substr(drive.Root.size());
      if (auto path = WindowsPathBelow(drive.Letter, rest)) {
        found.emplace_back(drive.Root.size(), std::move(*path));
      }
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  std::vector<std::string> paths;
  paths.reserve(found.size());
  for (auto& [length, path] : found) paths.push_back(std::move(path));
  return paths;
}

std::optional<std::string> clsPathMap::WindowsPath(const std::string& hostPath) {
  std::vector<std::string> paths = WindowsPaths(hostPath);
  if (paths.empty()) return {};
  return std::move(paths.front());
}

}  // namespace sandrel
