// What a working database tells of its snapshots besides their rows: when and of which machine each
// was taken, and what was scanned. It stands in the database itself, so that it changes in the same
// step as the rows.
#pragma once

#include <string>
#include <string_view>

#include "config/clsScanDefinition.h"

namespace sandrel {

class clsSnapshotRecord {
 public:
  /// An empty record: no snapshot, or one of which nothing is known.
  clsSnapshotRecord() = default;

  /// Of the working database at the host path; empty where there is none or it holds no record.
  /// Never raises.
  static clsSnapshotRecord Read(const std::string& database);

  /// Writes the record in the place of the one that the database holds, in the transaction of the
  /// first workspace where one is open.
  void Write(const std::string& database) const;

  /// When a snapshot, "Before" or "After", was taken, as a text of local date and time; empty when
  /// it isn't known.
  std::string Time(std::string_view which) const;
  /// Host folder of the machine that it was taken of; empty when it isn't known.
  std::string Machine(std::string_view which) const;
  void Set(std::string_view which, std::string_view time, std::string_view machine);

  /// What both snapshots are of; empty when it isn't known.
  clsScanDefinition Definition;

 private:
  clsScanDefinition m_snapshots;  // the texts that aren't settings
};

}  // namespace sandrel
