// What the settings say about a scan: which parts run, which folders, hives and details they take,
// and what is excluded. The one reader of these keys, so that each default stands once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/clsSettingsSource.h"
#include "platform/machine/clsMachine.h"

namespace sandrel {

/// One hive of the registry scan.
struct ScanHive {
  std::string Name;
  std::uint32_t Key = 0;
};

/// The hives that can be scanned, in the order of the scan; another computer has only two.
const std::vector<ScanHive>& ScanHives(bool remote);

class clsScanSettings {
 public:
  /// `settings` must outlive the object.
  explicit clsScanSettings(clsSettingsSource& settings) : m_settings(settings) {}

  bool DiskScan() { return IsOn("DiskScan", "1"); }
  bool VersionInfo() { return IsOn("VersionInfo", "0"); }
  bool SizeInfo() { return IsOn("SizeInfo", "1"); }
  bool AttributeInfo() { return IsOn("AttributeInfo", "1"); }
  bool HiddenFolders() { return IsOn("HiddenFolders", "1"); }
  bool RegScan() { return IsOn("RegScan", "1"); }
  /// True when the registry of the machine itself is scanned: then its hives must be readable.
  bool ScansLocalRegistry() { return RegScan() && RemoteName().empty(); }
  bool RemoteRegistry() { return IsOn("RemoteRegistry", "0"); }
  bool FileExclude() { return IsOn("FileExclude", "1"); }

  /// The entries of a numbered list ("ScanFolders", "ExcludeFiles"), from "1" to the first empty
  /// key.
  std::vector<std::string> List(std::string_view section);

  /// The bare name of the remote computer when remote scanning is on, else empty.
  std::string RemoteName();

  /// True when the hive is scanned: as stored, else every hive but HKEY_CLASSES_ROOT.
  bool IsSelected(const ScanHive& hive);

 private:
  bool IsOn(std::string_view key, std::string_view fallback);

  clsSettingsSource& m_settings;
};

/// The exclusions in force while the user has no list: Sandrel's own folder `appPath` (a host path,
/// where a drive of the machine holds it), what each scanned drive keeps of deleted files and for
/// itself, the machine's temporary folders and its swap file. Folders end in a backslash.
/// `complete`, when given, tells whether all could be known: the temporary folders are told by the
/// registry.
std::vector<std::string> DefaultExcludes(clsMachine& machine, const std::string& appPath,
                                         clsScanSettings& settings, bool* complete = nullptr);

/// The machine's registry; null when it can't be read and needn't be, as it isn't scanned.
/// Otherwise raises errnum::Hive.
clsRegistry* RegistryIfNeeded(clsMachine& machine, clsScanSettings& settings);

}  // namespace sandrel
