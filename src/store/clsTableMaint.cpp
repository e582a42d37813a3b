#include "store/clsTableMaint.h"

#include <fmt/format.h>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "platform/dao/Workspace.h"

namespace sandrel {
namespace {

void MakeTable(dao::TableDefs tables, const std::string& name, const TableShape& shape) {
  dao::TableDef table(name);
  for (const dao::Field& field : shape.Fields) table.AppendField(field);
  try {
    tables.Append(table);
  } catch (const clsError& error) {
    if (error.Number() != errnum::TableExists) throw;
    tables.Delete(name);
    tables.Append(table);
  }
  for (const dao::Index& index : shape.Indexes) tables.AppendIndex(name, index);
}

// The table and its indexes appear together or not at all; a caller's transaction takes in several
// tables.
void CreateTable(const std::string& path, const std::string& name, const TableShape& shape) {
  dao::Workspace& workspace = dao::DBEngine::FirstWorkspace();
  const auto database = workspace.OpenDatabase(path);
  dao::InTransaction(workspace, [&] { MakeTable(database->TableDefs(), name, shape); });
}

void CreateAs(const char* source, const std::string& database, const std::string& table,
              const TableShape& shape) {
  RaiseAs(source, [&] { CreateTable(database, table, shape); });
}

bool HasTable(const dao::Database& database, const char* name) {
  try {
    database.OpenRecordset(name, dao::RecordsetType::Table);
    return true;
  } catch (const clsError& error) {
    // A table that can't be looked at because another program writes is there all the same.
    return error.Number() == errnum::RecordLocked;
  }
}

}  // namespace

void clsTableMaint::CreateDatabase(const std::string& database) {
  RaiseAs("clsTableMaint.CreateDatabase", [&] {
    try {
      dao::DBEngine::FirstWorkspace().CreateDatabase(database);
    } catch (const clsError& error) {
      if (error.Number() != errnum::DatabaseExists) throw;
    }
  });
}

void clsTableMaint::NeedFree(const std::string& database) {
  if (!clsFileWorks::FileExists(database) || !dao::DBEngine::IsLocked(database)) return;
  throw clsError(
      errnum::RecordLocked,
      fmt::format("Can't replace or delete {}; another program is writing it. Close that "
                  "program or wait for it, and try again.",
                  database),
      "clsTableMaint.NeedFree");
}

void clsTableMaint::DeleteDatabase(const std::string& database) {
  RaiseAs("clsTableMaint.DeleteDatabase", [&] {
    if (!clsFileWorks::FileExists(database)) return;
    NeedFree(database);
    clsFileWorks::DeleteFile(database);
    // A killed run's journal must not be taken for one of the next file of this name.
    clsFileWorks::DeleteFile(database + "-journal");
  });
}

void clsTableMaint::CheckDatabase(const std::string& database) {
  RaiseAs("clsTableMaint.CheckDatabase",
          [&] { dao::DBEngine::FirstWorkspace().OpenDatabase(database)->Check(); });
}

void clsTableMaint::ReplaceDatabase(clsNewFile& file, const std::string& database) {
  RaiseAs("clsTableMaint.ReplaceDatabase", [&] {
    // A journal that a killed writer left belongs to the old file. It is played back here; what the
    // engine leaves of one must not be taken for the new file's.
    NeedFree(database);
    clsFileWorks::DeleteFile(file.Target() + "-journal");
    file.Commit();
  });
}

void clsTableMaint::CreateTempPathTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateTempPathTable", database, table, shapes::Paths());
}

void clsTableMaint::CreateTempFileTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateTempFileTable", database, table, shapes::Files());
}

void clsTableMaint::CreateTempRegKeyTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateTempRegKeyTable", database, table, shapes::RegKeys());
}

void clsTableMaint::CreateTempRegValueTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateTempRegValueTable", database, table, shapes::RegValues());
}

void clsTableMaint::CreateTempIniSectionTable(const std::string& database,
                                              const std::string& table) {
  CreateAs("clsTableMaint.CreateTempIniSectionTable", database, table, shapes::IniSections());
}

void clsTableMaint::CreateTempIniValueTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateTempIniValueTable", database, table, shapes::IniValues());
}

void clsTableMaint::CreateTempLeftOutTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateTempLeftOutTable", database, table, shapes::LeftOut());
}

void clsTableMaint::CreateTempSettingsTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateTempSettingsTable", database, table, shapes::Settings());
}

void clsTableMaint::CreateNewOrOldFilesTable(const std::string& database,
                                             const std::string& table) {
  CreateAs("clsTableMaint.CreateNewOrOldFilesTable", database, table, shapes::NewOrOldFiles());
}

void clsTableMaint::CreateChangedFilesTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateChangedFilesTable", database, table, shapes::ChangedFiles());
}

void clsTableMaint::CreateNewOrOldRegEntryTable(const std::string& database,
                                                const std::string& table) {
  CreateAs("clsTableMaint.CreateNewOrOldRegEntryTable", database, table,
           shapes::NewOrOldRegEntries());
}

void clsTableMaint::CreateChangedRegEntryTable(const std::string& database,
                                               const std::string& table) {
  CreateAs("clsTableMaint.CreateChangedRegEntryTable", database, table,
           shapes::ChangedRegEntries());
}

void clsTableMaint::CreateNewOrOldIniEntryTable(const std::string& database,
                                                const std::string& table) {
  CreateAs("clsTableMaint.CreateNewOrOldIniEntryTable", database, table,
           shapes::NewOrOldIniEntries());
}

void clsTableMaint::CreateChangedIniEntryTable(const std::string& database,
                                               const std::string& table) {
  CreateAs("clsTableMaint.CreateChangedIniEntryTable", database, table,
           shapes::ChangedIniEntries());
}

void clsTableMaint::CreateHiveLookupTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateHiveLookupTable", database, table, shapes::HiveLookup());
}

void clsTableMaint::CreateValueTypeTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateValueTypeTable", database, table, shapes::ValueTypes());
}

void clsTableMaint::CreateStatsTable(const std::string& database, const std::string& table) {
  CreateAs("clsTableMaint.CreateStatsTableErr", database, table, shapes::Stats());
}

SnapshotLevel ReadSnapshotLevel(const std::string& workingDatabase) {
  try {
    if (!clsFileWorks::FileExists(workingDatabase)) return SnapshotLevel::None;
    const auto database = dao::DBEngine::FirstWorkspace().OpenDatabase(workingDatabase);
    if (!HasTable(*database, "tblRegValue")) return SnapshotLevel::None;
    return HasTable(*database, "tblRegValue2") ? SnapshotLevel::BeforeAndAfter
                                               : SnapshotLevel::Before;
  } catch (const clsError&) {
    return SnapshotLevel::None;
  }
}

}  // namespace sandrel
