#include "snapshot/clsAnalysis.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/modOverwrite.h"
#include "config/clsScanSettings.h"
#include "scan/clsScanDrive.h"
#include "scan/clsScanReg.h"
#include "snapshot/Differences.h"
#include "snapshot/StatsReport.h"

namespace sandrel {
namespace {

// All of `body` or nothing, so that it can be run again after an error.
template <class Body>
void InTransaction(dao::Workspace& workspace, Body&& body) {
  workspace.BeginTrans();
  try {
    body();
    workspace.CommitTrans();
  } catch (const clsError&) {
    if (workspace.InTransaction()) workspace.Rollback();
    throw;
  }
}

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

constexpr Lookup ValueTypes[] = {
    {0, "NONE"},
    {1, "STRING"},
    {2, "EXPAND_STRING"},
    {3, "BINARY"},
    {4, "DWORD"},
    {5, "BIG_ENDIAN"},
    {6, "LINK"},
    {7, "MULTI_STRING"},
    {8, "RESOURCE_LIST"},
    {9, "FULL_RESOURCE_DESCRIPTOR"},
    {10, "RESOURCE_REQUIREMENTS_LIST"},
};

}  // namespace

clsAnalysis::clsAnalysis(clsShell& shell, clsSettings& settings, const clsHome& home,
                         std::shared_ptr<clsMachine> machine)
    : m_shell(shell), m_settings(settings), m_home(home), m_machine(std::move(machine)) {}

std::string clsAnalysis::GetViewNameAndLocation(const std::string& title) {
  std::string path;
  clsStatements run(m_shell, "frmSandrel.GetViewNameAndLocation");
  run.Command(
      [&] {
        run([&] {
          path =
              m_shell.ChooseFile({title.empty() ? "Create Analysis" : title, ".mdb", "Sandrel.mdb",
                                  "MS Access *.mdb|*.mdb|All Files *.*|*.*", m_home.Path(), false});
        });
      },
      [] {});
  return path;
}

std::string clsAnalysis::SaveDialog(const std::string& title, const std::string& extension,
                                    const std::string& filter) {
  std::string path;
  clsStatements run(m_shell, "frmSandrel.SaveDialog");
  run.Command(
      [&] {
        run([&] {
          path = m_shell.ChooseFile({title, "." + extension, "", filter, m_home.Path(), true});
        });
      },
      [] {});
  return path;
}

void clsAnalysis::mnuSnapShotAfter_Click(clsSnapshots& snapshots) {
  AfterInto(snapshots, GetViewNameAndLocation(""));
}

// What can be known of the target before the long scan is told before it.
void clsAnalysis::CheckTarget(const std::string& path) const {
  if (clsFileWorks::FolderExists(path)) {
    throw clsError(
        errnum::PathFileAccess,
        fmt::format("Can't write the analysis {}: it is a folder. Choose a file.", path));
  }
  if (clsFileWorks::IsSameFile(path, m_home.WorkingDatabase())) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't write the analysis {}: that file holds the snapshots. Choose "
                               "another file.",
                               path));
  }
  std::error_code ignored;
  const auto kind = std::filesystem::symlink_status(path, ignored).type();
  if (kind != std::filesystem::file_type::not_found && !clsFileWorks::FileExists(path)) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't write the analysis {}: what stands there is no file. Choose "
                               "another name.",
                               path));
  }
  const std::string folder = std::filesystem::path(path).parent_path().string();
  if (!folder.empty() && !clsFileWorks::FolderExists(folder)) {
    throw clsError(
        errnum::PathNotFound,
        fmt::format("Can't write the analysis {}: there is no folder {}.", path, folder));
  }
  if (access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) != 0) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't write the analysis {}: the folder can't be written ({}). "
                               "Choose another one.",
                               path, std::generic_category().message(errno)));
  }
}

// One statement of the After command; false when it failed or said so.
bool clsAnalysis::Try(const std::function<bool()>& statement) {
  bool goOn = false;
  clsStatements run(m_shell, "frmSandrel.mnuSnapShotAfter");
  run.Command([&] { run([&] { goOn = statement(); }); }, [] {});
  return goOn;
}

bool clsAnalysis::MayCreate(const std::string& path) {
  return Try([&] {
    CheckTarget(path);
    return MayOverwrite(m_shell, path);
  });
}

bool clsAnalysis::AfterInto(clsSnapshots& snapshots, const std::string& path) {
  if (path.empty()) return false;
  std::optional<clsHomeLock> lock;  // from the question to the finished analysis
  return Try([&] { return (lock.emplace(m_home), true); }) && MayCreate(path) &&
         AfterAndViews(snapshots, path);
}

bool clsAnalysis::AfterAndViews(clsSnapshots& snapshots, const std::string& path) {
  std::optional<clsHomeLock> lock;  // between the two
  return Try([&] {
           lock.emplace(m_home);
           CheckTarget(path);
           return true;
         }) &&
         snapshots.AfterSnapshot() && CreateViews(path);
}

bool clsAnalysis::CreateViews(const std::string& ViewPath) {
  AppState& state = m_shell.State;
  bool complete = false;
  clsStatements run(m_shell, "frmSandrel.CreateViews");
  m_targetTouched = false;
  m_complete = false;
  run.Command(
      [&] {
        std::optional<clsHomeLock> lock;
        run([&] { lock.emplace(m_home); });
        if (!lock) return;
        const std::string target = ViewPath.empty() ? state.AnalysisPath : ViewPath;
        // What could never work ends the command, whatever the answer.
        bool usable = false;
        run([&] {
          if (m_machine == nullptr)
            throw clsError(errnum::Machine, "There is no machine to look at.");
          CheckTarget(target);
          usable = true;
        });
        if (!usable) return;
        state.AnalysisPath = target;
        state.Scanning = true;
        run([&] { m_shell.UpdateCommandState(); });
        run([&] { m_shell.CommitPendingDeletes(); });
        const std::string kept = state.AnalysisPath;
        run([&] { m_shell.CloseAnalysis(); });
        state.AnalysisPath = kept;
        run([&] { m_shell.SetMousePointer(pointer::ArrowHourglass); });
        run([&] { m_shell.DoEvents(false); });
        Create(run);
        if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
        complete = m_complete;
        if (complete) {
          run([&] { m_shell.SetStatusText("Analysis Created"); });
        } else {
          if (!state.CloseDown) run([&] { m_shell.SetStatusText("Scan Stopped"); });
          if (m_targetTouched) run([&] { clsTableMaint().DeleteDatabase(state.AnalysisPath); });
          state.AnalysisPath.clear();
        }
        state.Scanning = false;
        m_machine->CloseRegistry();
        if (state.CloseDown) {
          run([&] { m_shell.Unload(); });
        } else {
          run([&] { m_shell.UpdateCommandState(); });
          run([&] { m_shell.SetMousePointer(pointer::Default); });
          run([&] { m_shell.RefreshMenus(); });
        }
      },
      [&] {
        complete = m_complete;
        state.Scanning = false;
        if (m_complete || !m_targetTouched) return;
        try {
          clsTableMaint().DeleteDatabase(state.AnalysisPath);
        } catch (const clsError& error) {
          m_shell.Tell(error.Description());
        }
      });
  return complete;
}

void clsAnalysis::Create(clsStatements& run) {
  AppState& state = m_shell.State;
  ApplyExclusions(run);
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Creating Analysis..."); });
  {
    const auto views = dao::DBEngine::CreateWorkspace("Views");
    const auto targets = dao::DBEngine::CreateWorkspace("Targets");
    std::unique_ptr<dao::Database> source;
    std::unique_ptr<dao::Database> target;
    std::unique_ptr<dao::Recordset> stats;
    clsTableMaint maint;
    run([&] { source = views->OpenDatabase(m_home.WorkingDatabase()); });
    run([&] {
      m_targetTouched = true;
      maint.DeleteDatabase(state.AnalysisPath);
    });
    run([&] { maint.CreateDatabase(state.AnalysisPath); });
    run([&] { target = targets->OpenDatabase(state.AnalysisPath); });
    FillLookups(run, *targets, target);
    run([&] { maint.CreateStatsTable(state.AnalysisPath, "tblStats"); });
    run([&] { stats = Need(target).OpenRecordset("tblStats", dao::RecordsetType::Table); });
    CompareAll(run, *targets, source, target, stats);
    if (!state.Scanning) return;
    run([&] {
      InTransaction(*targets,
                    [&] { WriteStatsReport(Need(stats), m_settings, *m_machine, m_home.Path()); });
    });
  }
  // The file is complete. A stop that comes while it is shown is too late to cost it.
  m_complete = true;
  run([&] { m_shell.OpenAnalysis(state.AnalysisPath); });
}

// Before the comparison and on both snapshots, so that a changed list works on stored data too.
void clsAnalysis::ApplyExclusions(clsStatements& run) {
  clsLeftOut ignored;
  clsScanContext context{*m_machine, m_settings, ignored, m_home.Path(),
                         [this] { m_shell.DoEvents(); }};
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Excluding Registry Values..."); });
  // The keys belong to both snapshots, so they go in the second pass only.
  for (const bool second : {false, true}) {
    clsScanReg registry(context);
    registry.Database = m_home.WorkingDatabase();
    registry.KeyTable = "tblRegKey";
    registry.ValueTable = second ? "tblRegValue2" : "tblRegValue";
    run([&] { registry.StartDBTransaction(); });
    run([&] { registry.DeleteExcludes(second); });
    run([&] { registry.CommitDBTransaction(); });
    run([&] { m_shell.DoEvents(false); });
  }
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Excluding Files..."); });
  clsScanDrive files(context);
  files.Database = m_home.WorkingDatabase();
  files.PathTable = "tblPaths";
  files.FileTable = "tblFiles2";
  files.FirstFileTable = "tblFiles";
  run([&] { files.StartDBTransaction(true); });
  run([&] { files.DeleteExcludes(); });
  run([&] { files.CommitDBTransaction(true); });
  run([&] { m_shell.DoEvents(false); });
}

void clsAnalysis::FillLookups(clsStatements& run, dao::Workspace& targets,
                              const std::unique_ptr<dao::Database>& target) {
  clsTableMaint maint;
  const std::string& path = m_shell.State.AnalysisPath;
  const auto fill = [&](const char* table, const char* field, std::span<const Lookup> rows) {
    const auto records = Need(target).OpenRecordset(table, dao::RecordsetType::Table);
    InTransaction(targets, [&] {
      for (const Lookup& row : rows) {
        records->AddNew();
        records->Set(field, row.Number);
        records->Set("Name", row.Name);
        records->Update();
      }
    });
  };
  run([&] { maint.CreateHiveLookupTable(path, "tblHives"); });
  run([&] { fill("tblHives", "Hive", Hives); });
  run([&] { maint.CreateValueTypeTable(path, "tblValueTypes"); });
  run([&] { fill("tblValueTypes", "ValueType", ValueTypes); });
}

void clsAnalysis::CompareAll(clsStatements& run, dao::Workspace& targets,
                             const std::unique_ptr<dao::Database>& source,
                             const std::unique_ptr<dao::Database>& target,
                             const std::unique_ptr<dao::Recordset>& stats) {
  clsTableMaint maint;
  const std::string& path = m_shell.State.AnalysisPath;
  for (const Difference& difference : Differences) {
    if (!m_shell.State.Scanning) return;
    std::unique_ptr<dao::Recordset> rows;
    std::unique_ptr<dao::Recordset> table;
    Phase("statement", difference.Table);
    run([&] { rows = Need(source).OpenRecordset(difference.Sql, dao::RecordsetType::Dynaset); });
    run([&] { m_shell.SetProgress(difference.Progress); });
    run([&] { m_shell.DoEvents(false); });
    run([&] { AddStatRow(Need(stats), difference.Description, Need(rows)); });
    Phase("copy", difference.Table);
    run([&] { difference.Create(maint, path, difference.Table); });
    run([&] { table = Need(target).OpenRecordset(difference.Table, dao::RecordsetType::Table); });
    // One transaction a table, ended before the next table is made through another workspace.
    run([&] { InTransaction(targets, [&] { CopyRecords(Need(rows), Need(table)); }); });
  }
  Phase("", "");
}

void clsAnalysis::CopyRecords(dao::Recordset& source, dao::Recordset& target) {
  if (source.Bof() && source.Eof()) return;
  std::vector<std::size_t> numbers;  // of the source's fields in the target
  for (const dao::Field& field : source.Fields()) numbers.push_back(target.FieldNumber(field.Name));
  for (source.MoveFirst(); !source.Eof(); source.MoveNext()) {
    target.AddNew();
    for (std::size_t i = 0; i < numbers.size(); ++i) target.Set(numbers[i], source.Get(i));
    try {
      target.Update();
    } catch (const clsError& error) {
      if (error.Number() != errnum::DuplicateKey) throw;
      // Two changed repetitions of one INI parameter, say: the key has room for the first.
      target.CancelUpdate();
    }
    m_shell.DoEvents();
  }
}

void clsAnalysis::AddStatRow(dao::Recordset& stats, std::string_view description,
                             dao::Recordset& source) {
  std::int64_t count = 0;
  if (!(source.Bof() && source.Eof())) {
    source.MoveLast();
    source.MoveFirst();
    count = source.RecordCount();
  }
  AddStatsRow(stats, description, fmt::to_string(count));
}

std::string clsAnalysis::GetStat(std::string_view Description) const {
  const std::string& path = m_shell.State.AnalysisPath;
  if (path.empty()) return {};
  return ReadStat(*dao::DBEngine::CreateWorkspace("Targets"), path, Description);
}

}  // namespace sandrel
