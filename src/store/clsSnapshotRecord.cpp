#include "store/clsSnapshotRecord.h"

#include "common/clsError.h"
#include "common/text.h"
#include "platform/dao/Workspace.h"
#include "store/clsTableMaint.h"

namespace sandrel {
namespace {

constexpr const char* Table = "tblSettings";
constexpr const char* TimeSection = "Snapshot Creation Time";
constexpr const char* MachineSection = "Snapshot Machine";

std::string TextOf(const clsScanDefinition& texts, const char* section, std::string_view key) {
  for (const clsScanDefinition::Entry& entry : texts.Entries()) {
    if (entry.Section == section && text::EqualNoCase(entry.Key, key)) return entry.Text;
  }
  return {};
}

}  // namespace

clsSnapshotRecord clsSnapshotRecord::Read(const std::string& database) {
  clsSnapshotRecord record;
  try {
    const auto file = dao::DBEngine::FirstWorkspace().OpenDatabase(database);
    const auto rows = file->OpenRecordset(Table, dao::RecordsetType::Table);
    if (rows->Bof()) return record;
    for (rows->MoveFirst(); !rows->Eof(); rows->MoveNext()) {
      const std::string section = rows->Get("Section").ToText();
      const bool ofSnapshot = section == TimeSection || section == MachineSection;
      (ofSnapshot ? record.m_snapshots : record.Definition)
          .Set(section, rows->Get("Key").ToText(), rows->Get("Value").ToText());
    }
  } catch (const clsError&) {
    return {};
  }
  return record;
}

void clsSnapshotRecord::Write(const std::string& database) const {
  RaiseAs("clsSnapshotRecord.Write", [&] {
    dao::Workspace& workspace = dao::DBEngine::FirstWorkspace();
    const auto file = workspace.OpenDatabase(database);
    dao::InTransaction(workspace, [&] {
      clsTableMaint().CreateTempSettingsTable(database, Table);
      const auto rows = file->OpenRecordset(Table, dao::RecordsetType::Table);
      for (const clsScanDefinition* texts : {&m_snapshots, &Definition}) {
        for (const clsScanDefinition::Entry& entry : texts->Entries()) {
          rows->AddNew();
          rows->Set("Section", entry.Section);
          rows->Set("Key", entry.Key);
          rows->Set("Value", entry.Text);
          rows->Update();
        }
      }
    });
  });
}

std::string clsSnapshotRecord::Time(std::string_view which) const {
  return TextOf(m_snapshots, TimeSection, which);
}

std::string clsSnapshotRecord::Machine(std::string_view which) const {
  return TextOf(m_snapshots, MachineSection, which);
}

void clsSnapshotRecord::Set(std::string_view which, std::string_view time,
                            std::string_view machine) {
  m_snapshots.Set(TimeSection, which, time);
  m_snapshots.Set(MachineSection, which, machine);
}

}  // namespace sandrel
