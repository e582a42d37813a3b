// What a snapshot is a snapshot of: the settings of a scan as they were when it began.
//
// A command works with one definition from its first folder to the analysis, whatever another
// program writes into the settings meanwhile. Both snapshots of a pair have the same one; otherwise
// what was scanned the second time alone would count as new.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/clsSettingsSource.h"

namespace sandrel {

class clsScanDefinition final : public clsSettingsSource {
 public:
  struct Entry {
    std::string Section, Key, Text;
  };

  /// One that says nothing: every setting is at its default.
  clsScanDefinition() = default;

  /// What `source` says about a scan, defaults written out.
  static clsScanDefinition Of(clsSettingsSource& source);

  bool IsEmpty() const { return m_entries.empty(); }
  /// In the order in which `Of` reads them.
  const std::vector<Entry>& Entries() const { return m_entries; }

  void Set(std::string_view section, std::string_view key, std::string_view text);
  using clsSettingsSource::GetSetting;
  std::string GetSetting(std::string_view section, std::string_view key,
                         std::string_view fallback) override;

  /// How `other` differs, a sentence for the user each; none when both scan the same.
  std::vector<std::string> Differences(const clsScanDefinition& other) const;

 private:
  const Entry* Find(std::string_view section, std::string_view key) const;

  std::vector<Entry> m_entries;
};

}  // namespace sandrel
