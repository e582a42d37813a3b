// Makes database files and tables; the only class that does. It holds no state.
//
// Every table method takes the host path of the database and the table's name, so that one method
// serves both snapshots. A table of that name is replaced by an empty one. Any error is raised
// again under the source "clsTableMaint." and the method's name.
#pragma once

#include <string>

#include "common/clsNewFile.h"
#include "store/TableShapes.h"

namespace sandrel {

class clsTableMaint {
 public:
  /// Makes the file, or makes a database of one without content; any other that exists stays as it
  /// is, without an error.
  void CreateDatabase(const std::string& database);
  /// Raises 3218 when another program is writing the file; one that doesn't exist nobody writes.
  /// Undoes what a killed writer had not finished.
  void NeedFree(const std::string& database);
  /// Deletes the file; one that doesn't exist is no error. Raises 3218 when another program is
  /// writing it; the file then stays.
  void DeleteDatabase(const std::string& database);

  /// Raises 3049 when the file doesn't hold together.
  void CheckDatabase(const std::string& database);
  /// Puts a finished database, which nobody has open any more, in its place, where
  /// `database` may stand. Raises 3218 when another program is writing that one, and the number of
  /// any other failure; it then stays as it is.
  void ReplaceDatabase(clsNewFile& file, const std::string& database);

  void CreateTempPathTable(const std::string& database, const std::string& table);
  void CreateTempFileTable(const std::string& database, const std::string& table);
  void CreateTempRegKeyTable(const std::string& database, const std::string& table);
  void CreateTempRegValueTable(const std::string& database, const std::string& table);
  void CreateTempIniSectionTable(const std::string& database, const std::string& table);
  void CreateTempIniValueTable(const std::string& database, const std::string& table);

  void CreateTempLeftOutTable(const std::string& database, const std::string& table);
  void CreateTempSettingsTable(const std::string& database, const std::string& table);

  void CreateNewOrOldFilesTable(const std::string& database, const std::string& table);
  void CreateChangedFilesTable(const std::string& database, const std::string& table);
  void CreateNewOrOldRegEntryTable(const std::string& database, const std::string& table);
  void CreateChangedRegEntryTable(const std::string& database, const std::string& table);
  void CreateNewOrOldIniEntryTable(const std::string& database, const std::string& table);
  void CreateChangedIniEntryTable(const std::string& database, const std::string& table);
  void CreateHiveLookupTable(const std::string& database, const std::string& table);
  void CreateValueTypeTable(const std::string& database, const std::string& table);
  void CreateStatsTable(const std::string& database, const std::string& table);
};

/// Which snapshots the working database holds.
enum class SnapshotLevel : int { None = 0, Before = 1, BeforeAndAfter = 2 };

/// Told by the tables of registry values; a working database comes to its place when it is
/// complete, so that one with the table has the whole snapshot. Never raises: a file
/// that can't be opened or is no database holds no snapshot; one that another program is writing
/// holds both.
SnapshotLevel ReadSnapshotLevel(const std::string& workingDatabase);

}  // namespace sandrel
