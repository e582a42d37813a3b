// What a snapshot left out, with the snapshot.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/clsLeftOut.h"

namespace sandrel {

/// An item as the working database has it.
struct LeftOutRow {
  std::string What;  ///< of namespace scope
  std::int64_t Hive = 0;
  std::string Path, Name, Reason;
};

class clsLeftOutTable {
 public:
  /// A table of the working database at the host path.
  clsLeftOutTable(std::string database, std::string table)
      : m_database(std::move(database)), m_table(std::move(table)) {}

  /// Makes the table unless it is there, as in the database of an earlier version.
  void CreateMissing() const;
  void Write(const clsLeftOut& leftOut) const;
  /// Empty where the table is missing.
  std::vector<LeftOutRow> Read() const;

 private:
  std::string m_database;
  std::string m_table;
};

}  // namespace sandrel
