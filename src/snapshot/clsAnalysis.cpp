#include "snapshot/clsAnalysis.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsNewFile.h"
#include "common/clsPathText.h"
#include "common/modOverwrite.h"
#include "scan/clsScanDrive.h"
#include "scan/clsScanReg.h"
#include "snapshot/StatsReport.h"
#include "snapshot/clsComparison.h"
#include "snapshot/modFileDialogs.h"
#include "store/clsSnapshotRecord.h"
#include "store/modTarget.h"

namespace sandrel {
clsAnalysis::clsAnalysis(clsShell& shell, clsSettings& settings, const clsHome& home,
                         std::shared_ptr<clsMachine> machine)
    : m_shell(shell), m_settings(settings), m_home(home), m_machine(std::move(machine)) {}

void clsAnalysis::mnuSnapShotAfter_Click(clsSnapshots& snapshots) {
  AfterInto(snapshots, GetViewNameAndLocation(m_shell, m_home.Path(), ""));
}

// What can be known of the target before the long scan is told before it.
void clsAnalysis::CheckTarget(const std::string& path) const {
  if (clsFileWorks::FolderExists(path)) {
    throw clsError(
        errnum::PathFileAccess,
        fmt::format("Can't write the analysis {}: it is a folder. Choose a file.", path));
  }
  // Also those of another home.
  if (clsFileWorks::IsSameFile(path, m_home.WorkingDatabase()) ||
      ReadSnapshotLevel(path) != SnapshotLevel::None) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't write the analysis {}: that file holds the snapshots. Choose "
                               "another file.",
                               path));
  }
  const std::string folder = std::filesystem::path(path).parent_path().string();
  if (!folder.empty() && !clsFileWorks::FolderExists(folder)) {
    throw clsError(
        errnum::PathNotFound,
        fmt::format("Can't write the analysis {}: there is no folder {}.", path, folder));
  }
  // What else refuses a file there refuses one that is begun.
  RaiseAs("clsAnalysis.CheckTarget", [&] {
    NeedAnalysisTarget(path);
    clsNewFile{path};
  });
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
  m_complete = false;
  clsStatements run(m_shell, "frmSandrel.CreateViews");
  run.Command(
      [&] {
        std::optional<clsHomeLock> lock;
        run([&] { lock.emplace(m_home); });
        if (!lock) return;
        const std::string target = ViewPath.empty() ? state.AnalysisPath : ViewPath;
        // What could never work ends the command, whatever the answer.
        const bool usable = run([&] {
          if (m_machine == nullptr)
            throw clsError(errnum::Machine, "There is no machine to look at.");
          CheckTarget(target);
        });
        if (!usable) return;
        state.Scanning = true;
        run([&] { m_shell.UpdateCommandState(); });
        run([&] { m_shell.CommitPendingDeletes(); });
        run([&] { m_shell.CloseAnalysis(); });
        state.AnalysisPath = target;
        run([&] { m_shell.SetMousePointer(pointer::ArrowHourglass); });
        run([&] { m_shell.DoEvents(false); });
        Create(run);
        if (!state.CloseDown) run([&] { m_shell.SetProgress(0); });
        if (m_complete) {
          run([&] { m_shell.SetStatusText("Analysis Created"); });
        } else {
          if (!state.CloseDown) run([&] { m_shell.SetStatusText("Scan Stopped"); });
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
        state.Scanning = false;
        if (!m_complete) state.AnalysisPath.clear();
      });
  return m_complete;
}

// Until the file is complete and on disk it stands beside its place, so that whatever ends the
// command leaves what the user has there.
void clsAnalysis::Create(clsStatements& run) {
  const AppState& state = m_shell.State;
  m_definition = clsSnapshotRecord::Read(m_home.WorkingDatabase()).Definition;
  if (m_definition.IsEmpty()) m_definition = clsScanDefinition::Of(m_settings);
  ApplyExclusions(run);
  run([&] { m_shell.SetProgress(0); });
  run([&] { m_shell.SetStatusText("Creating Analysis..."); });
  std::unique_ptr<clsNewFile> file;
  if (!run([&] { file = std::make_unique<clsNewFile>(state.AnalysisPath); })) return;
  {
    clsComparison comparison(m_shell, run, m_home.WorkingDatabase(), file->Path());
    comparison.OnPhase = OnPhase;
    run([&] { comparison.OwnFiles = OwnFiles(*file); });
    comparison.Write([&](dao::Recordset& stats) {
      WriteStatsReport(stats, m_definition, *m_machine, m_home.Path(), comparison.LeftOut());
    });
  }
  if (!state.Scanning) return;
  // A stop that comes from here on is too late to cost the analysis.
  clsTableMaint maint;
  m_complete = run([&] { maint.CheckDatabase(file->Path()); }) &&
               run([&] { maint.ReplaceDatabase(*file, state.AnalysisPath); });
  if (m_complete) run([&] { m_shell.OpenAnalysis(state.AnalysisPath); });
}

// Where the machine holds what these commands write, and the rows of the folders that would be
// without files.
std::vector<std::string> clsAnalysis::OwnFiles(const clsNewFile& analysis) const {
  std::vector<std::string> paths;
  for (const std::string& file :
       {analysis.Target(), m_shell.State.AnalysisPath, m_home.WorkingDatabase()}) {
    for (const std::string& part : {file, clsNewFile::PlaceBeside(file)}) {
      for (const char* suffix : {"", "-journal"}) {
        for (std::string& path : m_machine->WindowsPaths(part + suffix)) {
          paths.push_back(clsPathText::TextBeforeLast(path, "\\") + "\\");
          paths.push_back(std::move(path));
        }
      }
    }
  }
  return paths;
}

// Before the comparison and on both snapshots, so that a changed list works on stored data too.
void clsAnalysis::ApplyExclusions(clsStatements& run) {
  clsLeftOut ignored;
  clsScanContext context{*m_machine, m_definition, ignored, m_home.Path(),
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
  files.IniSectionTable = "tblIniSections";
  files.IniValueTable = "tblIniValues2";
  files.FirstIniValueTable = "tblIniValues";
  run([&] { files.StartDBTransaction(false); });
  run([&] { files.DeleteExcludes(); });
  run([&] { files.CommitDBTransaction(false); });
  run([&] { m_shell.DoEvents(false); });
}

}  // namespace sandrel
