// The values that are exported to a registry file.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sandrel {

struct clsRegEntry {
  std::string Branch;     ///< hive and key path, joined by a backslash
  std::string ValueName;  ///< empty for the default value
  std::string Value;      ///< as its page shows it
  std::int32_t RegType = 0;
};

class clsRegEntrys {
 public:
  clsRegEntry& Add(clsRegEntry entry = {}) { return m_entries.emplace_back(std::move(entry)); }
  std::size_t Count() const { return m_entries.size(); }
  std::vector<clsRegEntry>& Items() { return m_entries; }

 private:
  std::vector<clsRegEntry> m_entries;
};

/// The value that a row of a registry page stands for, by its cells' texts under their columns'
/// names; of a changed value the new one.
clsRegEntry RegEntryOf(bool isChanged,
                       const std::function<std::string(std::string_view column)>& cell);

/// The type's number by the text of a page's Value Type column, without regard to case; 0 for a
/// text that names none.
std::int32_t GetRegEntryType(std::string_view typeText);

}  // namespace sandrel
