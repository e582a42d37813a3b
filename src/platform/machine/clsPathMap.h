// Windows paths to host paths and back, by the machine's drives.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/machine/clsHostFolder.h"

namespace sandrel {

class clsPathMap {
 public:
  /// Drives of the Wine prefix at the host path `folder`: the links of its dosdevices folder, or C:
  /// alone (drive_c) where there is none.
  static clsPathMap OfPrefix(const std::string& folder);
  /// The one drive C: at the host path `folder`.
  static clsPathMap OfVolume(const std::string& folder);

  /// The drives that lead to a folder, as "C:", in the order of their letters.
  std::vector<std::string> Drives();

  /// Where a Windows path lies on the host. Each part is found by its exact name, else by the first
  /// name in byte order that equals it but for case. Nothing when it doesn't exist; `reason`, when
  /// given, is then the system's error number.
  std::optional<std::string> HostPath(std::string_view windowsPath, int* reason = nullptr);

  /// The host path that a Windows path has if every part stands there by its exact name; the disk
  /// is not asked. Nothing for what is no Windows path of an existing drive.
  std::optional<std::string> ExactHostPath(std::string_view windowsPath);

  /// The Windows path of a host path, which need not exist, by the drive whose folder is nearest
  /// above it; the first letter of several. Nothing when no drive holds it or its name is none for
  /// Windows.
  std::optional<std::string> WindowsPath(const std::string& hostPath);
  /// The same by every drive that holds it, the nearest first.
  std::vector<std::string> WindowsPaths(const std::string& hostPath);

 private:
  struct Drive {
    char Letter;       // upper case
    std::string Root;  // without links in it and without a trailing slash, so empty for "/"
  };
  // What a search for a name in a folder gave, as long as the folder stays as it was.
  struct Found {
    FolderStamp Folder;
    std::string HostName;  // empty: no such name
  };

  clsPathMap(std::string devices, std::vector<Drive> drives);
  const std::vector<Drive>& CurrentDrives();
  void ReadDrives();
  const Drive* DriveOf(std::string_view windowsPath);
  std::string FindName(const std::string& hostFolder, std::string_view windowsName);

  std::string m_devices;  // the dosdevices folder; empty for a fixed drive
  FolderStamp m_devicesStamp;
  std::optional<Drive> m_systemDrive;              // C: where dosdevices names none
  std::vector<Drive> m_drives;                     // by letter
  std::unordered_map<std::string, Found> m_found;  // by folder, "/" and the name asked for
};

/// The name in the host folder `hostFolder` that stands for the Windows name `windowsName`: the
/// first in byte order that equals it but for case and leads somewhere. Empty when there is none.
std::string FindNameNoCase(const std::string& hostFolder, std::string_view windowsName);

}  // namespace sandrel
