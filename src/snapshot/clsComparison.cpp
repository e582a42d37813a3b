#include "snapshot/clsComparison.h"

#include <fmt/format.h>

#include <optional>
#include <vector>

#include "common/clsError.h"
#include "platform/registry/clsRegistry.h"
#include "store/modValueTypes.h"

namespace sandrel {
namespace {

// Until the file is finished it is worth nothing.
constexpr dao::Durability WhileWriting = dao::Durability::UntilPowerFails;

struct Lookup {
  std::int64_t Number;
  const char* Name;
};

constexpr Lookup Hives[] = {
    {static_cast<std::int32_t>(hkey::ClassesRoot), "HKEY_CLASSES_ROOT"},
    {static_cast<std::int32_t>(hkey::CurrentUser), "HKEY_CURRENT_USER"},
    {static_cast<std::int32_t>(hkey::LocalMachine), "HKEY_LOCAL_MACHINE"},
    {static_cast<std::int32_t>(hkey::Users), "HKEY_USERS"},
    {static_cast<std::int32_t>(hkey::CurrentConfig), "HKEY_CURRENT_CONFIG"},
};

}  // namespace

void clsComparison::Write(const std::function<void(dao::Recordset& stats)>& report) {
  clsTableMaint maint;
  const auto views = dao::DBEngine::CreateWorkspace("Views");
  m_targets = dao::DBEngine::CreateWorkspace("Targets", WhileWriting);
  m_run([&] { m_source = views->OpenDatabase(m_working); });
  m_run([&] { maint.CreateDatabase(m_path); });
  m_run([&] { m_target = m_targets->OpenDatabase(m_path); });
  FillLookups();
  m_run([&] { maint.CreateStatsTable(m_path, "tblStats"); });
  m_run([&] { m_stats = Need(m_target).OpenRecordset("tblStats", dao::RecordsetType::Table); });
  m_run([&] {
    m_leftOut.Before = clsLeftOutTable(m_working, "tblLeftOut").Read();
    m_leftOut.After = clsLeftOutTable(m_working, "tblLeftOut2").Read();
  });
  const clsCoverage coverage(m_leftOut.Before, m_leftOut.After, OwnFiles);
  for (const Difference& difference : Differences) {
    if (!m_shell.State.Scanning) return;
    Compare(difference, coverage);
  }
  Phase("", "");
  if (!m_shell.State.Scanning) return;
  m_run([&] { InTransaction(*m_targets, [&] { AddValueTypes(Need(m_target), m_types); }); });
  m_run([&] { InTransaction(*m_targets, [&] { report(Need(m_stats)); }); });
}

void clsComparison::FillLookups() {
  clsTableMaint maint;
  m_run([&] { maint.CreateHiveLookupTable(m_path, "tblHives"); });
  m_run([&] {
    const auto records = Need(m_target).OpenRecordset("tblHives", dao::RecordsetType::Table);
    InTransaction(*m_targets, [&] {
      for (const Lookup& row : Hives) {
        records->AddNew();
        records->Set("Hive", row.Number);
        records->Set("Name", row.Name);
        records->Update();
      }
    });
  });
  m_run([&] { maint.CreateValueTypeTable(m_path, "tblValueTypes"); });
}

void clsComparison::Compare(const Difference& difference, const clsCoverage& coverage) {
  clsTableMaint maint;
  std::unique_ptr<dao::Recordset> rows;
  std::unique_ptr<dao::Recordset> table;
  std::optional<Copied> copied;  // not known of what could not be copied
  Phase("statement", difference.Table);
  m_run([&] { rows = Need(m_source).OpenRecordset(difference.Sql, dao::RecordsetType::Dynaset); });
  m_run([&] { m_shell.SetProgress(difference.Progress); });
  m_run([&] { m_shell.DoEvents(false); });
  Phase("copy", difference.Table);
  m_run([&] { difference.Create(maint, m_path, difference.Table); });
  m_run([&] { table = Need(m_target).OpenRecordset(difference.Table, dao::RecordsetType::Table); });
  // One transaction a table, ended before the next table is made through another workspace.
  m_run([&] {
    InTransaction(*m_targets,
                  [&] { copied = CopyRecords(difference, coverage, Need(rows), Need(table)); });
  });
  if (!copied) return;
  m_leftOut.NotCompared += copied->Hidden;
  m_run([&] { AddStatsRow(Need(m_stats), difference.Description, fmt::to_string(copied->Told)); });
}

clsComparison::Copied clsComparison::CopyRecords(const Difference& difference,
                                                 const clsCoverage& coverage,
                                                 dao::Recordset& source, dao::Recordset& target) {
  Copied copied;
  if (source.Bof() && source.Eof()) return copied;
  std::vector<std::size_t> numbers;  // of the source's fields in the target
  std::vector<std::size_t> types;
  for (const dao::Field& field : source.Fields()) {
    if (field.Name.ends_with("ValueType")) types.push_back(numbers.size());
    numbers.push_back(target.FieldNumber(field.Name));
  }
  for (source.MoveFirst(); !source.Eof(); source.MoveNext()) {
    m_shell.DoEvents();
    if (coverage.IsOwn(difference, source)) continue;
    if (coverage.Hides(difference, source)) {
      ++copied.Hidden;
      continue;
    }
    ++copied.Told;
    for (const std::size_t type : types) m_types.insert(source.Get(type).Integer());
    target.AddNew();
    for (std::size_t i = 0; i < numbers.size(); ++i) target.Set(numbers[i], source.Get(i));
    try {
      target.Update();
    } catch (const clsError& error) {
      if (error.Number() != errnum::DuplicateKey) throw;
      // Two changed repetitions of one INI parameter, say: the key has room for the first.
      target.CancelUpdate();
    }
  }
  return copied;
}

}  // namespace sandrel
