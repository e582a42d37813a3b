#include "store/clsLeftOutTable.h"

#include "common/clsError.h"
#include "platform/dao/Workspace.h"
#include "store/clsTableMaint.h"

namespace sandrel {
namespace {

std::unique_ptr<dao::Recordset> OpenIfThere(const dao::Database& database,
                                            const std::string& table) {
  try {
    return database.OpenRecordset(table, dao::RecordsetType::Table);
  } catch (const clsError& error) {
    if (error.Number() != errnum::NoSuchTable) throw;
    return nullptr;
  }
}

}  // namespace

void clsLeftOutTable::CreateMissing() const {
  const auto file = dao::DBEngine::FirstWorkspace().OpenDatabase(m_database);
  if (OpenIfThere(*file, m_table) == nullptr) {
    clsTableMaint().CreateTempLeftOutTable(m_database, m_table);
  }
}

void clsLeftOutTable::Write(const clsLeftOut& leftOut) const {
  dao::Workspace& workspace = dao::DBEngine::FirstWorkspace();
  const auto file = workspace.OpenDatabase(m_database);
  dao::InTransaction(workspace, [&] {
    const auto rows = file->OpenRecordset(m_table, dao::RecordsetType::Table);
    for (const LeftOutItem& item : leftOut.Items()) {
      rows->AddNew();
      rows->Set("What", item.Scope());
      rows->Set("Hive", item.Hive);
      rows->Set("Path", item.Path);
      rows->Set("Name", item.Name);
      rows->Set("Reason", item.Reason());
      try {
        rows->Update();
      } catch (const clsError& error) {
        if (error.Number() != errnum::DuplicateKey) throw;
        rows->CancelUpdate();  // paths that differ in case alone, by two scan folders
      }
    }
  });
}

std::vector<LeftOutRow> clsLeftOutTable::Read() const {
  std::vector<LeftOutRow> found;
  const auto file = dao::DBEngine::FirstWorkspace().OpenDatabase(m_database);
  const auto rows = OpenIfThere(*file, m_table);
  if (rows == nullptr || rows->Bof()) return found;
  for (rows->MoveFirst(); !rows->Eof(); rows->MoveNext()) {
    found.push_back({rows->Get("What").ToText(), rows->Get("Hive").Integer(),
                     rows->Get("Path").ToText(), rows->Get("Name").ToText(),
                     rows->Get("Reason").ToText()});
  }
  return found;
}

}  // namespace sandrel
