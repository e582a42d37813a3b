#include "snapshot/modSettingsChange.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "common/text.h"

namespace sandrel {
namespace {

template <std::size_t Size>
bool IsOneOf(std::string_view name, const std::array<const char*, Size>& names) {
  return std::any_of(names.begin(), names.end(),
                     [&](const char* one) { return text::EqualNoCase(name, one); });
}

}  // namespace

bool IsScanSetting(std::string_view section, std::string_view key) {
  if (text::EqualNoCase(section, "Enabled")) {
    return !IsOneOf(key, std::array{"Statusbar", "Toolbar", "Systray"});
  }
  return IsOneOf(section, std::array{"ScanFolders", "ExcludeFiles", "RegScan"});
}

bool ConfirmSettingsChange(clsShell& shell, SnapshotLevel level) {
  if (level == SnapshotLevel::None) return true;
  const char* which =
      level == SnapshotLevel::Before ? "'Before' snapshot" : "'Before' and 'After' snapshots";
  return shell.Ask({fmt::format("Your {} will become invalid and be cleared if you continue.\n\n"
                                "Save anyway?",
                                which),
                    "Sandrel Manager", Buttons::YesNo, BoxIcon::Exclamation}) == Answer::Yes;
}

bool ChangeScanSettings(clsShell& shell, clsSettings& settings, const clsHome& home,
                        const std::function<void()>& save) {
  const clsHomeLock lock(home);  // no scan runs while what it reads is changed
  const std::string working = home.WorkingDatabase();
  const SnapshotLevel level = ReadSnapshotLevel(working);
  if (!ConfirmSettingsChange(shell, level)) return false;
  settings.Together(save, [&] { clsTableMaint().DeleteDatabase(working); });
  return true;
}

}  // namespace sandrel
