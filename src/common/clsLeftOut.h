// What a scan left out instead of ending: which folder, file, key or value, and why.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace sandrel {

enum class LeftOut : std::uint8_t {
  CaseTwin,          ///< a name that equals an earlier one but for case
  ImpossibleName,    ///< a name that Windows can't have
  LongPath,          ///< a path that doesn't fit its field
  HiddenFolder,      ///< a hidden or system folder, which is not entered
  LinkedFolder,      ///< a symbolic link to a folder, or one that leads nowhere
  VanishedFolder,    ///< a folder that was gone when its turn came
  KernelFolder,      ///< a file system of the kernel's own (proc, sysfs...)
  UnreadableFolder,  ///< a folder that can't be read
  UnfinishedFolder,  ///< a scan folder whose scan ended with an error
  UnreadableFile,    ///< a file whose details can't be read
  LongVersion,       ///< a version text of more than 20 characters
  UnreadableIni,     ///< an INI file that can't be read
  LongIniEntry,      ///< an INI section or parameter that doesn't fit its field
  LongKey,           ///< a registry key whose path doesn't fit its field
  LongValueName,     ///< a registry value whose name doesn't fit its field
  DeepKey,           ///< registry keys below the 512th level
  UnreadableKey,     ///< a registry key that can't be opened
  UnfinishedKey,     ///< a hive whose scan ended with an error
  RefusedKey,        ///< registry keys that the hive reader can't read
  RefusedValue,      ///< registry values that can't be read
  Count_             // the number of kinds
};

/// How far what was left out reaches: what can't be compared with another snapshot because of it.
namespace scope {
inline constexpr std::string_view Folder = "Folder";           ///< a folder and all below it
inline constexpr std::string_view IniEntries = "INI entries";  ///< those of one file
inline constexpr std::string_view Key = "Key";                 ///< a key and all below it
inline constexpr std::string_view Subkeys = "Subkeys";         ///< all below a key
inline constexpr std::string_view Values = "Values";           ///< those of one key
inline constexpr std::string_view Detail = "Detail";           ///< of a file; its row is there
/// Nothing else. It is left out of every snapshot, so that it is missing in none.
inline constexpr std::string_view Name = "Name";
}  // namespace scope

struct LeftOutItem {
  LeftOut Kind{};
  std::int64_t Hive = 0;    ///< root key as the store has it; 0 for files
  std::string Path{};       ///< Windows path of a folder, with its backslash; or a key's
  std::string Name{};       ///< of the file, key or value in it; may be empty
  std::string Detail{};     ///< the system's reason; may be empty
  std::uint64_t Count = 1;  ///< how many the item stands for

  /// Of namespace scope.
  std::string_view Scope() const;
  /// For the user: "folder that can't be read: Permission denied".
  std::string Reason() const;

  /// By kind and place.
  bool operator<(const LeftOutItem& other) const;
};

class clsLeftOut {
 public:
  /// An item that is there already, as after a walk that was begun again, counts once.
  void Add(LeftOutItem item) { m_items.insert(std::move(item)); }
  void Add(const clsLeftOut& other) { m_items.insert(other.m_items.begin(), other.m_items.end()); }
  const std::set<LeftOutItem>& Items() const { return m_items; }
  std::uint64_t Of(LeftOut kind) const;
  void Clear() { m_items.clear(); }

  /// One sentence that tells every kind with a count above 0; empty when nothing was left out.
  std::string Summary() const;

 private:
  std::set<LeftOutItem> m_items;
};

}  // namespace sandrel
