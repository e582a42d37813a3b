#include "config/clsConfigModel.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "config/clsFolderSource.h"
#include "config/modSettingCheck.h"
#include "platform/machine/modWildcard.h"

namespace sandrel {
namespace {

constexpr const char* ManagerTitle = "Sandrel Manager";

// A folder so that the paths of what lies in it begin with it.
std::string Branch(std::string_view folder) {
  return clsPathText::AddSeparator(clsPathText::NormaliseFolder(folder));
}

}  // namespace

clsConfigModel::clsConfigModel(clsShell& shell, clsSettings& settings,
                               std::shared_ptr<clsMachine> machine, std::string appPath)
    : m_shell(shell),
      m_settings(settings),
      m_machine(std::move(machine)),
      m_appPath(std::move(appPath)) {}

void clsConfigModel::LoadFolders() {
  Folders = clsScanSettings(m_settings).List("ScanFolders");
  if (!Folders.empty() || m_machine == nullptr) return;
  const std::string drive = m_machine->CurrentDrive();
  if (drive.empty()) return;
  Folders = {drive};
  m_settings.SaveSetting("ScanFolders", "1", drive);
}

void clsConfigModel::LoadOptions() {
  clsScanSettings settings(m_settings);
  DiskScan = settings.DiskScan();
  VersionInfo = settings.VersionInfo();
  SizeInfo = settings.SizeInfo();
  AttributeInfo = settings.AttributeInfo();
  HiddenFolders = settings.HiddenFolders();
  RegScan = settings.RegScan();
  RemoteRegistry = settings.RemoteRegistry();
  FileExclude = settings.FileExclude();
  RemoteName = m_settings.GetSetting("RegScan", "RemoteName");
  for (const ScanHive& hive : ScanHives(false)) m_scanned[hive.Name] = settings.IsSelected(hive);
}

void clsConfigModel::LoadExcludes() {
  clsScanSettings settings(m_settings);
  Excludes = settings.List("ExcludeFiles");
  if (!Excludes.empty() || m_machine == nullptr) return;
  bool complete = false;
  Excludes = DefaultExcludes(*m_machine, m_appPath, settings, &complete);
  // A list without what can't be known now would stay without it.
  if (!complete) m_incompleteDefaults = Excludes;
  if (complete && !Excludes.empty()) {
    m_settings.Together([this] { SaveList("ExcludeFiles", Excludes); });
  }
}

void clsConfigModel::Save() {
  m_settings.Together([this] {
    SaveList("ScanFolders", Folders);
    const auto enable = [this](const char* key, bool on) {
      m_settings.SaveSetting("Enabled", key, on ? "1" : "0");
    };
    enable("DiskScan", DiskScan);
    enable("VersionInfo", VersionInfo);
    enable("SizeInfo", SizeInfo);
    enable("AttributeInfo", AttributeInfo);
    enable("HiddenFolders", HiddenFolders);
    enable("RegScan", RegScan);
    for (const ScanHive& hive : ShownHives()) {
      m_settings.SaveSetting("RegScan", hive.Name, text::BooleanText(IsScanned(hive.Name)));
    }
    enable("RemoteRegistry", RemoteRegistry);
    m_settings.SaveSetting("RegScan", "RemoteName", text::Trim(RemoteName));
    if (Excludes != m_incompleteDefaults) SaveList("ExcludeFiles", Excludes);
    enable("FileExclude", FileExclude);
  });
}

// The marker makes the section exist, as one that doesn't can't be deleted.
void clsConfigModel::SaveList(const char* section, const std::vector<std::string>& entries) {
  m_settings.SaveSetting(section, "x", "x");
  m_settings.DeleteSetting(section);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    m_settings.SaveSetting(section, fmt::to_string(i + 1), entries[i]);
  }
}

bool clsConfigModel::IsScanned(const std::string& hive) const {
  const auto found = m_scanned.find(hive);
  return found != m_scanned.end() && found->second;
}

void clsConfigModel::SelectHives(bool scanned) {
  for (const ScanHive& hive : ShownHives()) m_scanned[hive.Name] = scanned;
}

std::string clsConfigModel::PathOf(std::string_view text) const {
  return m_machine != nullptr ? MachinePath(*m_machine, text) : clsPathText::NormaliseFolder(text);
}

bool clsConfigModel::AddFolder(std::string_view folder) {
  std::string path = PathOf(folder);
  const auto walked = [this](const std::string& above, const std::string& below) {
    return IsWalked(above, below);
  };
  if (path.empty() || !IsUsable([&] { CheckScanFolder(path, m_machine.get()); }) ||
      !MayAdd(Folders, path, "scanning", walked)) {
    return false;
  }
  if (m_machine != nullptr && !m_machine->FolderExists(path) && !AddsMissing(path)) return false;
  Folders.push_back(std::move(path));
  return true;
}

// What no scan could work with is told at once.
bool clsConfigModel::IsUsable(const std::function<void()>& check) {
  try {
    check();
    return true;
  } catch (const clsError& error) {
    m_shell.Ask({error.Description(), ManagerTitle, Buttons::Ok, BoxIcon::Exclamation});
    return false;
  }
}

// It may come.
bool clsConfigModel::AddsMissing(const std::string& path) {
  return m_shell.Ask({path + "\n\nIs not a valid file specification or folder...\n\n Add anyway?",
                      ManagerTitle, Buttons::YesNo, BoxIcon::Question}) == Answer::Yes;
}

bool clsConfigModel::AddExcludeFolder(std::string_view folder) {
  const std::string path = PathOf(folder);
  const auto all = [](const std::string&, const std::string&) { return true; };
  if (path.empty() || !MayAdd(Excludes, path, "excluding", all)) return false;
  Excludes.push_back(Branch(path));
  return true;
}

bool clsConfigModel::MayAdd(
    const std::vector<std::string>& list, const std::string& folder, const char* doing,
    const std::function<bool(const std::string& above, const std::string& below)>& covers) {
  const std::string added = Branch(folder);
  for (const std::string& entry : list) {
    const std::string known = Branch(entry);
    const char* part = nullptr;
    if (text::StartsWithNoCase(added, known)) {
      if (covers(known, added)) part = "parent folder";
    } else if (text::StartsWithNoCase(known, added)) {
      if (covers(added, known)) part = "subfolders";
    }
    if (part == nullptr) continue;
    m_shell.Ask({fmt::format("You are already {} this folder or one of it's {}", doing, part),
                 ManagerTitle, Buttons::Ok, BoxIcon::Exclamation});
    return false;
  }
  return true;
}

// Whether a walk that begins in the folder `from` gets to the folder `to` below it. It enters no
// linked folders, and no hidden or system ones unless it is to, so these can be scanned beside what
// they lie in.
// Folders that can't be looked at count as walked.
bool clsConfigModel::IsWalked(const std::string& from, const std::string& to) {
  if (m_machine == nullptr) return true;
  try {
    std::size_t start = from.size();
    for (std::size_t end; (end = to.find('\\', start)) != std::string::npos; start = end + 1) {
      const std::string_view name = std::string_view(to).substr(start, end - start);
      clsDirSearch search = m_machine->Dir(to.substr(0, start), SubfolderMask(HiddenFolders));
      bool entered = false;
      for (std::string each; !entered && search.Next(each);) {
        entered = search.IsFolder() && text::EqualNoCase(each, name);
      }
      if (!entered) return !m_machine->FolderExists(to.substr(0, end));
    }
  } catch (const clsError&) {
    // Told by the scan.
  }
  return true;
}

bool clsConfigModel::AddExclude(std::string_view entry) {
  std::string path = PathOf(entry);
  if (path.empty() || !IsUsable([&] { CheckExclusion(path); })) return false;
  // Without the backslash it would stand for a file of that name and exclude nothing.
  if (m_machine != nullptr && m_machine->FolderExists(path)) path = Branch(path);
  if (!IsThere(path) && !AddsMissing(path)) return false;
  Excludes.push_back(std::move(path));
  return true;
}

bool clsConfigModel::AddExcludeFile(const std::string& hostPath) {
  if (m_machine == nullptr) return false;
  if (const auto path = m_machine->WindowsPath(hostPath)) return AddExclude(*path);
  m_shell.Ask(
      {fmt::format("{} lies on no drive of the machine in {}.", hostPath, m_machine->Folder()),
       ManagerTitle, Buttons::Ok, BoxIcon::Exclamation});
  return false;
}

// Whether a directory search finds anything by that name or pattern.
bool clsConfigModel::IsThere(const std::string& entry) {
  if (m_machine == nullptr) return false;
  const std::string last = clsPathText::TextAfterLast(entry, "\\");
  if (last.find_first_of("?*") == std::string::npos) {
    return m_machine->FolderExists(entry) || m_machine->FileExists(entry);
  }
  try {
    const std::string folder = Branch(clsPathText::TextBeforeLast(entry, "\\"));
    clsDirSearch search = m_machine->Dir(folder, fileattr::Files | fileattr::Directory);
    if (last == "*.*") return true;  // the folder's own name "." is found in it
    std::string name;
    while (search.Next(name)) {
      if (MatchesWildcard(name, last)) return true;
    }
  } catch (const clsError&) {
    // What can't be searched isn't there.
  }
  return false;
}

}  // namespace sandrel
