// What a snapshot scans, as the user edits it: the lists, switches and hives of the configuration
// with their rules. Nothing is stored before `Save`, but for the lists' defaults.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/clsShell.h"
#include "config/clsScanSettings.h"
#include "config/clsSettings.h"
#include "platform/machine/clsMachine.h"

namespace sandrel {

class clsConfigModel {
 public:
  /// Folders and exclusions are Windows paths of `machine`; without one (null) the lists get no
  /// defaults, and no exclusion is known to be valid. `appPath` is the program's folder, a host
  /// path. Shell and settings must outlive the object.
  clsConfigModel(clsShell& shell, clsSettings& settings, std::shared_ptr<clsMachine> machine,
                 std::string appPath);

  std::vector<std::string> Folders;
  std::vector<std::string> Excludes;
  bool DiskScan = true, VersionInfo = false, SizeInfo = true, AttributeInfo = true;
  bool HiddenFolders = true;
  bool RegScan = true, RemoteRegistry = false;
  bool FileExclude = true;
  std::string RemoteName;

  /// Read the settings. A list that is empty gets its default entries, which are stored at once:
  /// the machine's first drive, and the exclusions that are in force without a list, unless some of
  /// them can't be known now.
  void LoadFolders();
  void LoadOptions();
  void LoadExcludes();
  /// Writes all of it, in one replacement of the settings file. Of the hives those that
  /// `ShownHives` gives.
  void Save();

  /// The hives that can be chosen: a remote computer has only two.
  const std::vector<ScanHive>& ShownHives() const { return ScanHives(RemoteRegistry); }
  bool IsScanned(const std::string& hive) const;
  void SetScanned(const std::string& hive, bool scanned) { m_scanned[hive] = scanned; }
  void SelectHives(bool scanned);

  /// Add an entry at the list's end. False when nothing was added: the text is empty, or it is
  /// refused, which the user was told.
  ///
  /// A folder to scan is refused where a listed one's scan gets to it, or its own to a listed one.
  bool AddFolder(std::string_view folder);
  /// A folder with all below it.
  bool AddExcludeFolder(std::string_view folder);
  /// A file, a pattern or a folder. One that isn't there is added when the user says so.
  bool AddExclude(std::string_view entry);
  /// A file by its host path. One that lies on no drive of the machine is refused.
  bool AddExcludeFile(const std::string& hostPath);

 private:
  std::string PathOf(std::string_view text) const;
  bool MayAdd(
      const std::vector<std::string>& list, const std::string& folder, const char* doing,
      const std::function<bool(const std::string& above, const std::string& below)>& covers);
  bool IsWalked(const std::string& from, const std::string& to);
  bool IsThere(const std::string& entry);
  bool IsUsable(const std::function<void()>& check);
  bool AddsMissing(const std::string& path);
  void SaveList(const char* section, const std::vector<std::string>& entries);

  clsShell& m_shell;
  clsSettings& m_settings;
  std::shared_ptr<clsMachine> m_machine;
  std::string m_appPath;
  std::optional<std::vector<std::string>> m_incompleteDefaults;  // are not stored
  std::map<std::string, bool> m_scanned;  // by the hive's name, those of a remote computer's too
};

}  // namespace sandrel
