#include "snapshot/clsSetupRecords.h"

#include <charconv>
#include <optional>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "config/clsScanSettings.h"
#include "platform/registry/clsRegistry.h"
#include "scan/clsScanDrive.h"
#include "scan/clsScanReg.h"
#include "store/modValueTypes.h"

namespace sandrel {
namespace {

constexpr const char* SharedDlls = "Software\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";

bool IsOn(const dao::Value& value) {
  return !value.IsNull() && value.Integer() != 0;
}

// The whole number that a value is or spells; nothing for anything else.
std::optional<std::int64_t> NumberIn(const dao::Value& value) {
  if (value.Type() == dao::Value::Kind::Integer) return value.Integer();
  const std::string text(text::Trim(value.ToText()));
  std::int64_t number = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || failure != std::errc() || end != text.data() + text.size()) return {};
  return number;
}

// What a move of the usage count means for the analysis; null for any other move.
const char* TargetOf(std::int64_t before, std::int64_t after) {
  if (before == 1 && after == 2) return "tblNewRegistryEnteries";
  if (before == 2 && after == 1) return "tblDeletedRegistryEnteries";
  return nullptr;
}

}  // namespace

clsSetupRecords::clsSetupRecords(clsShell& shell, clsSettings& settings, const clsHome& home,
                                 clsMachine& machine)
    : m_shell(shell), m_settings(settings), m_home(home), m_machine(machine) {}

std::string clsSetupRecords::DatabasePath() const {
  return clsFileWorks::Join(m_home.Path(), "setupdll.mdb");
}

// The counts are those of the machine itself.
void clsSetupRecords::NeedLocal() {
  if (!clsScanSettings(m_settings).RemoteRegistry()) return;
  throw clsError(
      errnum::InvalidOperation,
      "The records of shared DLLs are those of the machine itself, and a remote registry "
      "is scanned. Turn that off first (section Enabled, key RemoteRegistry).",
      "clsSetupRecords.NeedLocal");
}

void clsSetupRecords::ProcessSetupFiles(bool After) {
  NeedLocal();
  clsLeftOut ignored;
  clsScanContext context{m_machine, m_settings, ignored, m_home.Path(), {}};
  clsScanReg registry(context);
  clsScanDrive files(context);
  const auto workspace = dao::DBEngine::CreateWorkspace("Setup");
  const auto database = workspace->OpenDatabase(DatabasePath());
  const auto list = database->OpenRecordset("FileList", dao::RecordsetType::Table);
  if (list->Bof() && list->Eof()) return;
  const std::string folder = clsPathText::AddSeparator(m_machine.SystemFolder());
  for (list->MoveFirst(); !list->Eof(); list->MoveNext()) {
    if (!IsOn(list->Get("On"))) continue;
    const std::string path = folder + list->Get("Name").ToText();
    const auto count = NumberIn(registry.GetElement(hkey::LocalMachine, SharedDlls, path));
    if (!count) continue;
    list->Edit();
    list->Set(After ? "AfterCount" : "BeforeCount", *count);
    if (!After) {
      list->Set("WriteOrDelete", 0);
    } else if (TargetOf(list->Get("BeforeCount").Integer(), *count) != nullptr) {
      list->Set("WriteOrDelete", -1);
      const auto host = m_machine.HostPath(path);
      list->Set("FileVersion", host ? files.GetVersionInfo(*host) : std::string());
    }
    list->Update();
  }
}

void clsSetupRecords::UpdateSetupTables() {
  NeedLocal();
  clsStatements run(m_shell, "frmSandrel.AfterSnapshot");
  run.Command(
      [&] {
        const auto workspace = dao::DBEngine::CreateWorkspace("Setup");
        std::unique_ptr<dao::Database> analysis;
        std::unique_ptr<dao::Database> setup;
        std::unique_ptr<dao::Recordset> list;
        run([&] { analysis = workspace->OpenDatabase(m_shell.State.AnalysisPath); });
        run([&] { setup = workspace->OpenDatabase(DatabasePath()); });
        run([&] {
          list = Need(setup).OpenRecordset("FileList", dao::RecordsetType::Table);
          list->MoveFirst();
        });
        while (list != nullptr && !list->Eof()) {
          if (IsOn(list->Get("WriteOrDelete"))) {
            ApplyTable(run, Need(analysis), *setup, list->Get("TableName").ToText());
          }
          list->MoveNext();
        }
      },
      [] {});
}

void clsSetupRecords::ApplyTable(clsStatements& run, dao::Database& analysis, dao::Database& setup,
                                 const std::string& table) {
  std::unique_ptr<dao::Recordset> records;
  std::unique_ptr<dao::Recordset> target;
  run([&] { records = setup.OpenRecordset(table, dao::RecordsetType::Table); });
  if (records == nullptr || (records->Bof() && records->Eof())) return;
  run([&] {
    records->MoveFirst();
    const char* const name =
        TargetOf(records->Get("BeforeCount").Integer(), records->Get("AfterCount").Integer());
    if (name == nullptr) return;
    target = analysis.OpenRecordset(name, dao::RecordsetType::Table);
    target->SetIndex("PrimaryKey");
  });
  if (target == nullptr) return;
  for (; !records->Eof(); records->MoveNext()) {
    run([&] {
      try {
        ApplyRecord(analysis, *target, *records);
      } catch (const clsError&) {
        target->CancelUpdate();
        throw;
      }
    });
  }
}

// The search takes the record's texts as they are stored, macros included.
void clsSetupRecords::ApplyRecord(dao::Database& analysis, dao::Recordset& target,
                                  dao::Recordset& record) {
  target.Seek("=", {record.Get("Hive"), record.Get("Branch"), record.Get("ValueName")});
  if (target.NoMatch()) {
    target.AddNew();
  } else if (IsNewerVersion(record.Get("FileVersion").ToText(),
                            record.Get("SandrelVersion").ToText())) {
    target.Edit();
  } else {
    return;
  }
  target.Set("Hive", record.Get("Hive"));
  for (const char* field : {"Branch", "ValueName", "Value"}) {
    std::string text = record.Get(field).ToText();
    target.Set(field, ExpandSetupMacros(text));
  }
  target.Set("ValueType", record.Get("ValueType"));
  try {
    target.Update();
  } catch (const clsError& error) {
    if (error.Number() != errnum::DuplicateKey) throw;
    // Its macros spell a row that the scans found, or that was added before.
    target.CancelUpdate();
  }
  AddValueTypes(analysis, {record.Get("ValueType").Integer()});
}

std::string clsSetupRecords::ExpandSetupMacros(std::string& Text) {
  std::size_t expanded = 0;  // what a folder's own text holds is no macro
  for (;;) {
    const std::size_t begin = Text.find("$(", expanded);
    if (begin == std::string::npos) return Text;
    const std::size_t end = Text.find(')', begin);
    const std::string name = Text.substr(begin + 2, end - begin - 2);
    const std::string rest(text::Trim(
        end == std::string::npos ? std::string_view() : std::string_view(Text).substr(end + 1)));
    const std::string lower = text::Lower(name);
    const bool isWindows = lower == "windir";
    const bool isSystem = lower == "winsysdir";
    Text.replace(begin, std::string::npos,
                 isWindows  ? m_machine.WindowsFolder()
                 : isSystem ? m_machine.SystemFolder()
                            : name);
    if (isWindows || isSystem) expanded = Text.size();
    Text += rest;
  }
}

bool clsSetupRecords::IsNewerVersion(std::string_view a, std::string_view b) {
  const auto take = [](std::string_view& version) {
    const std::size_t dot = version.find('.');
    const double part = text::Val(version.substr(0, dot));
    version.remove_prefix(dot == std::string_view::npos ? version.size() : dot + 1);
    return part;
  };
  while (!a.empty() || !b.empty()) {
    const double first = take(a);
    const double second = take(b);
    if (first != second) return first > second;
  }
  return false;
}

}  // namespace sandrel
