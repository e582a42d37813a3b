// What a scan left out instead of ending, counted by kind and told when it is over.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace sandrel {

enum class LeftOut {
  CaseTwin,        ///< a name that equals an earlier one but for case
  ImpossibleName,  ///< a name that Windows can't have
  LongPath,        ///< a path of more than 255 UTF-16 units
  HiddenFolder,    ///< a hidden or system folder, which is not entered
  LinkedFolder,    ///< a symbolic link to a folder, or one that leads nowhere
  VanishedFolder,  ///< a folder that was gone when its turn came
  KernelFolder,    ///< a file system of the kernel's own (proc, sysfs...)
  LongVersion,     ///< a version text of more than 20 characters
  UnreadableIni,   ///< an INI file that can't be read
  LongIniEntry,    ///< an INI section or parameter that doesn't fit its field
  LongKey,         ///< a registry key whose path doesn't fit its field
  LongValueName,   ///< a registry value whose name doesn't fit its field
  DeepKey,         ///< a registry key below the 512th level
  RefusedKey,      ///< a registry key that the hive reader can't read
  RefusedValue,    ///< a registry value that the hive reader can't read
  Count_           // the number of kinds
};

class clsLeftOut {
 public:
  void Add(LeftOut kind, std::uint64_t count = 1) {
    m_counts[static_cast<std::size_t>(kind)] += count;
  }
  void Add(const clsLeftOut& other) {
    for (std::size_t i = 0; i < m_counts.size(); ++i) m_counts[i] += other.m_counts[i];
  }
  std::uint64_t Of(LeftOut kind) const { return m_counts[static_cast<std::size_t>(kind)]; }
  void Clear() { m_counts.fill(0); }

  /// One sentence that tells every kind with a count above 0; empty when nothing was left out.
  std::string Summary() const;

 private:
  std::array<std::uint64_t, static_cast<std::size_t>(LeftOut::Count_)> m_counts{};
};

}  // namespace sandrel
