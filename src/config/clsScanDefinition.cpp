#include "config/clsScanDefinition.h"

#include <fmt/format.h>

#include <algorithm>

#include "common/text.h"
#include "config/clsScanSettings.h"

namespace sandrel {
namespace {

struct Switch {
  const char* Key;
  bool (clsScanSettings::*IsOn)();
  const char* Words;  // what it adds to a scan
};

constexpr Switch Switches[] = {
    {"DiskScan", &clsScanSettings::DiskScan, "Files"},
    {"VersionInfo", &clsScanSettings::VersionInfo, "Version info"},
    {"SizeInfo", &clsScanSettings::SizeInfo, "Size info"},
    {"AttributeInfo", &clsScanSettings::AttributeInfo, "Attribute info"},
    {"HiddenFolders", &clsScanSettings::HiddenFolders, "Hidden folders"},
    {"RegScan", &clsScanSettings::RegScan, "The registry"},
    {"RemoteRegistry", &clsScanSettings::RemoteRegistry, "The remote registry"},
    {"FileExclude", &clsScanSettings::FileExclude, "File exclusions"},
};

// The entries of the one list that the other lacks.
template <class Tell>
void TellExtra(const std::vector<std::string>& list, const std::vector<std::string>& other,
               Tell&& tell) {
  for (const std::string& entry : list) {
    const bool known = std::any_of(other.begin(), other.end(), [&](const std::string& one) {
      return text::EqualNoCase(one, entry);
    });
    if (!known) tell(entry);
  }
}

}  // namespace

clsScanDefinition clsScanDefinition::Of(clsSettingsSource& source) {
  clsScanDefinition definition;
  clsScanSettings settings(source);
  for (const Switch& one : Switches) {
    definition.Set("Enabled", one.Key, (settings.*one.IsOn)() ? "1" : "0");
  }
  for (const char* section : {"ScanFolders", "ExcludeFiles"}) {
    int number = 0;
    for (const std::string& entry : settings.List(section)) {
      definition.Set(section, fmt::to_string(++number), entry);
    }
  }
  definition.Set("RegScan", "RemoteName", settings.RemoteName());
  for (const ScanHive& hive : ScanHives(false)) {
    definition.Set("RegScan", hive.Name, settings.IsSelected(hive) ? "True" : "False");
  }
  return definition;
}

const clsScanDefinition::Entry* clsScanDefinition::Find(std::string_view section,
                                                        std::string_view key) const {
  for (const Entry& entry : m_entries) {
    if (text::EqualNoCase(entry.Section, section) && text::EqualNoCase(entry.Key, key)) {
      return &entry;
    }
  }
  return nullptr;
}

void clsScanDefinition::Set(std::string_view section, std::string_view key, std::string_view text) {
  if (const Entry* known = Find(section, key)) {
    m_entries[static_cast<std::size_t>(known - m_entries.data())].Text = text;
  } else {
    m_entries.push_back({std::string(section), std::string(key), std::string(text)});
  }
}

std::string clsScanDefinition::GetSetting(std::string_view section, std::string_view key,
                                          std::string_view fallback) {
  const Entry* entry = Find(section, key);
  return entry == nullptr ? std::string(fallback) : entry->Text;
}

std::vector<std::string> clsScanDefinition::Differences(const clsScanDefinition& other) const {
  clsScanDefinition mine = *this;
  clsScanDefinition theirs = other;
  clsScanSettings here(mine);
  clsScanSettings there(theirs);
  std::vector<std::string> told;
  for (const Switch& one : Switches) {
    const bool now = (there.*one.IsOn)();
    if ((here.*one.IsOn)() != now) {
      told.push_back(fmt::format("{}: {} now", one.Words, now ? "on" : "off"));
    }
  }
  const auto tellList = [&](const char* section, std::string_view what) {
    const auto before = here.List(section);
    const auto now = there.List(section);
    TellExtra(before, now, [&](const std::string& entry) {
      told.push_back(fmt::format("{} {}: not any more", what, entry));
    });
    TellExtra(now, before, [&](const std::string& entry) {
      told.push_back(fmt::format("{} {}: new", what, entry));
    });
  };
  if (here.DiskScan() && there.DiskScan()) tellList("ScanFolders", "Folder");
  if (here.FileExclude() && there.FileExclude()) tellList("ExcludeFiles", "Exclusion");
  if (!here.RegScan() || !there.RegScan()) return told;
  if (!text::EqualNoCase(here.RemoteName(), there.RemoteName())) {
    told.push_back(fmt::format("Remote computer: \"{}\", it was \"{}\"", there.RemoteName(),
                               here.RemoteName()));
  }
  for (const ScanHive& hive : ScanHives(!there.RemoteName().empty())) {
    const bool now = there.IsSelected(hive);
    if (here.IsSelected(hive) != now) {
      told.push_back(fmt::format("{}: {} now", hive.Name, now ? "scanned" : "not scanned"));
    }
  }
  return told;
}

}  // namespace sandrel
