#include "config/clsScanSettings.h"

#include <fmt/format.h>

#include <algorithm>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/text.h"

namespace sandrel {

const std::vector<ScanHive>& ScanHives(bool remote) {
  static const std::vector<ScanHive> Local = {
      {"HKEY_CLASSES_ROOT", hkey::ClassesRoot},
      {"HKEY_CURRENT_CONFIG", hkey::CurrentConfig},
      {"HKEY_CURRENT_USER", hkey::CurrentUser},
      {"HKEY_LOCAL_MACHINE", hkey::LocalMachine},
      {"HKEY_USERS", hkey::Users},
  };
  static const std::vector<ScanHive> Remote = {{"HKEY_LOCAL_MACHINE", hkey::LocalMachine},
                                               {"HKEY_USERS", hkey::Users}};
  return remote ? Remote : Local;
}

bool clsScanSettings::IsOn(std::string_view key, std::string_view fallback) {
  return text::Val(m_settings.GetSetting("Enabled", key, fallback)) == 1;
}

std::vector<std::string> clsScanSettings::List(std::string_view section) {
  std::vector<std::string> entries;
  for (int i = 1;; ++i) {
    std::string entry = m_settings.GetSetting(section, fmt::to_string(i));
    if (entry.empty()) return entries;
    entries.push_back(std::move(entry));
  }
}

std::string clsScanSettings::RemoteName() {
  if (!RemoteRegistry()) return {};
  return clsPathText::BareMachineName(m_settings.GetSetting("RegScan", "RemoteName"));
}

bool clsScanSettings::IsSelected(const ScanHive& hive) {
  return text::ReadBoolean(m_settings.GetSetting("RegScan", hive.Name),
                           hive.Key != hkey::ClassesRoot);
}

clsRegistry* RegistryIfNeeded(clsMachine& machine, clsScanSettings& settings) {
  try {
    return &machine.Registry();
  } catch (const clsError&) {
    if (settings.ScansLocalRegistry()) throw;
    return nullptr;
  }
}

namespace {

std::vector<std::string> ScannedDrives(const clsMachine& machine, clsScanSettings& settings) {
  std::vector<std::string> drives;
  std::vector<std::string> folders = settings.List("ScanFolders");
  if (folders.empty()) folders.push_back(machine.CurrentDrive());
  for (const std::string& folder : folders) {
    std::string drive = text::Upper(folder.substr(0, 2));
    if (drive.ends_with(':') && std::find(drives.begin(), drives.end(), drive) == drives.end()) {
      drives.push_back(std::move(drive));
    }
  }
  return drives;
}

}  // namespace

std::vector<std::string> DefaultExcludes(clsMachine& machine, const std::string& appPath,
                                         clsScanSettings& settings, bool* complete) {
  std::vector<std::string> entries;
  const auto addFolder = [&](const std::string& folder) {
    entries.push_back(clsPathText::AddSeparator(folder));
  };
  if (const auto own = machine.WindowsPath(appPath)) addFolder(*own);
  for (const std::string& drive : ScannedDrives(machine, settings)) {
    for (const char* folder : {"$Recycle.Bin", "RECYCLER", "System Volume Information"}) {
      const std::string path = drive + "\\" + folder;
      if (machine.FolderExists(path)) addFolder(path);
    }
  }
  clsRegistry* const registry = RegistryIfNeeded(machine, settings);
  if (complete != nullptr) *complete = registry != nullptr;
  if (registry == nullptr) return entries;
  const std::string temp = machine.Environ("temp");
  const std::string tmp = machine.Environ("tmp");
  if (!temp.empty()) addFolder(temp);
  if (!tmp.empty() && text::Lower(tmp) != text::Lower(temp)) addFolder(tmp);
  const std::string swap = clsPathText::AddSeparator(machine.WindowsFolder()) + "WIN386.SWP";
  if (machine.FileExists(swap)) entries.push_back(swap);
  return entries;
}

}  // namespace sandrel
