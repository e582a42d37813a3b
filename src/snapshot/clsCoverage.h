// Which differences between two snapshots are none: what one of them left out is compared with
// nothing, and what the program itself has written is no installation's work.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/dao/Recordset.h"
#include "snapshot/Differences.h"
#include "store/clsLeftOutTable.h"

namespace sandrel {

class clsCoverage {
 public:
  /// What each snapshot left out, and Windows paths of files of the program's own.
  clsCoverage(const std::vector<LeftOutRow>& before, const std::vector<LeftOutRow>& after,
              const std::vector<std::string>& ownFiles);

  /// True when the current record of this difference's statement is a file of the program's own.
  bool IsOwn(const Difference& difference, dao::Recordset& row) const;
  /// True when it is new and stands under something that the Before snapshot left out, or deleted
  /// and stands under something that the After snapshot left out.
  bool Hides(const Difference& difference, dao::Recordset& row) const;

 private:
  // Paths without regard to case; keys begin with the number of their hive.
  class clsPlaces {
   public:
    void Add(const std::string& path);
    bool IsEmpty() const { return m_paths.empty(); }
    bool Has(const std::string& path) const;
    /// Whether the path, or one above it, is among them; parts of a path end in a backslash.
    bool HasAbove(const std::string& path) const;

   private:
    std::unordered_set<std::string> m_paths;
  };

  struct Gaps {
    explicit Gaps(const std::vector<LeftOutRow>& rows);
    clsPlaces Folders, IniFiles, Keys, Subkeys, Values;
  };

  Gaps m_before, m_after;
  clsPlaces m_ownFiles;
};

}  // namespace sandrel
