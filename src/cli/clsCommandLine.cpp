#include "cli/clsCommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "browser/Pages.h"
#include "browser/clsPageReader.h"
#include "cli/clsCliShell.h"
#include "cli/clsExports.h"
#include "cli/clsPageWriter.h"
#include "cli/modPrintHelper.h"
#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/modOverwrite.h"
#include "common/text.h"
#include "config/clsHome.h"
#include "config/clsScanSettings.h"
#include "config/clsSettings.h"
#include "config/modSettingCheck.h"
#include "platform/machine/modMachineReport.h"
#include "platform/process/clsHostCommands.h"
#include "snapshot/StatsReport.h"
#include "snapshot/clsAnalysis.h"
#include "snapshot/clsSetupRecords.h"
#include "snapshot/clsSnapshots.h"
#include "snapshot/modSettingsChange.h"
#include "store/clsSnapshotRecord.h"
#include "wizard/clsShellWorks.h"

#ifndef SANDREL_VERSION
#define SANDREL_VERSION "0"
#endif

namespace sandrel {
namespace {

struct Arguments {
  std::string Machine, Home;
  std::string File, Out, Folder;
  std::string Page = "ShowStats", ExportPage = "ShowAllRegistry", CopyPage = "ShowNewFiles";
  std::string PrintPage = "ShowStats";
  std::string Section, Key, Text, Match;
  std::vector<std::string> Command;
  bool Yes = false, Json = false, HasText = false, LeftOut = false, BeforeInstall = false,
       AfterInstall = false;
};

class clsCommands {
 public:
  explicit clsCommands(const Arguments& arguments)
      : m_arguments(arguments),
        m_shell(arguments.Yes),
        m_settings(clsSettings::DefaultPath()),
        m_home(clsHome::Find(arguments.Home)) {}

  int Before();
  int After();
  int Replace();
  int Status();
  int List();
  int Settings();
  int NoteRecords();
  int ApplyRecords();
  int Export();
  int Copy();
  int PrintToFile();
  int Watch();

 private:
  template <class Body>
  auto OfAnalysis(Body&& body);
  std::shared_ptr<clsMachine> OpenMachine();
  std::shared_ptr<clsMachine> OpenScannedMachine();
  void PrintSection(const std::string& section);
  std::shared_ptr<clsMachine> MachineIfThere();
  bool MayStore(const std::string& section, const std::string& text);
  void TellRemote();
  int Print(const std::string& line) const;
  void PrintLeftOut(const char* which, const char* table) const;

  const Arguments& m_arguments;
  clsCliShell m_shell;
  clsSettings m_settings;
  clsHome m_home;
};

std::shared_ptr<clsMachine> clsCommands::OpenMachine() {
  return clsMachine::Open(MachineFolder(m_arguments.Machine, m_settings));
}

int clsCommands::Print(const std::string& line) const {
  // An interrupt that comes when the work is done stops nothing.
  if (m_shell.ExitStatus() == exitstatus::Done) {
    fmt::print("{}\n", text::Escaped(line));
  } else if (clsCliShell::WasInterrupted()) {
    fmt::print(stderr, "sandrel-cli: Scan Stopped\n");
  }
  return m_shell.ExitStatus();
}

// The window tells of a computer that can't be reached and goes on without its registry; a script
// would take that snapshot for a whole one.
std::shared_ptr<clsMachine> clsCommands::OpenScannedMachine() {
  auto machine = OpenMachine();
  clsScanSettings settings(m_settings);
  const std::string remote = settings.RegScan() ? settings.RemoteName() : "";
  if (!remote.empty() && machine->Connect(remote) == nullptr) {
    throw clsError(errnum::Machine, "The remote registry on " + remote +
                                        " cannot be accessed: $SANDREL_NETWORK names no folder "
                                        "that holds a machine of that name.");
  }
  return machine;
}

int clsCommands::Before() {
  clsSnapshots snapshots(m_shell, m_settings, m_home, OpenScannedMachine());
  m_shell.OnInterrupt = [&] { snapshots.ConfirmCancelScan(); };
  clsCliShell::CatchInterrupts();
  snapshots.mnuSnapShotBefore_Click();
  return Print("Before Snapshot Complete");
}

int clsCommands::After() {
  const auto machine = OpenScannedMachine();
  clsSnapshots snapshots(m_shell, m_settings, m_home, machine);
  if (snapshots.GetSnapshotLevel() == SnapshotLevel::None) {
    m_shell.Refuse(
        "There is no 'Before' snapshot to compare with. Take one with: sandrel-cli before");
    return m_shell.ExitStatus();
  }
  clsAnalysis analysis(m_shell, m_settings, m_home, machine);
  m_shell.OnInterrupt = [&] { snapshots.ConfirmCancelScan(); };
  clsCliShell::CatchInterrupts();
  std::string path = clsFileWorks::Absolute(m_arguments.File);
  analysis.AfterInto(snapshots, path);
  return Print("Analysis Created: " + m_arguments.File);
}

int clsCommands::Replace() {
  clsSnapshots snapshots(m_shell, m_settings, m_home, nullptr);
  if (snapshots.GetSnapshotLevel() != SnapshotLevel::BeforeAndAfter) {
    m_shell.Refuse("There is no 'After' snapshot to put in the place of the 'Before' snapshot.");
    return m_shell.ExitStatus();
  }
  snapshots.mnuSnapShotRollUp_Click();
  return Print("The After snapshot is the Before snapshot now");
}

void clsCommands::PrintLeftOut(const char* which, const char* table) const {
  for (const LeftOutRow& row : clsLeftOutTable(m_home.WorkingDatabase(), table).Read()) {
    fmt::print("{}\t{}\t{}\n", which, text::Escaped(PlaceOf(row)), text::Escaped(row.Reason));
  }
}

int clsCommands::Status() {
  const SnapshotLevel level = ReadSnapshotLevel(m_home.WorkingDatabase());
  const char* words = level == SnapshotLevel::None     ? "none"
                      : level == SnapshotLevel::Before ? "Before"
                                                       : "Before and After";
  const clsSnapshotRecord record = clsSnapshotRecord::Read(m_home.WorkingDatabase());
  const auto known = [](const std::string& text) { return text.empty() ? "not known" : text; };
  for (const MachineFact& fact : ReportMachine(MachineFolder(m_arguments.Machine, m_settings))) {
    fmt::print("{:<10} {}\n", fact.Name + ":", text::Escaped(fact.Text));
  }
  fmt::print("Home:      {}\n", text::Escaped(m_home.Path()));
  fmt::print("Snapshots: {}\n", words);
  if (level != SnapshotLevel::None) {
    fmt::print("Before:    {} ({})\n", known(record.Time("Before")),
               text::Escaped(known(record.Machine("Before"))));
  }
  if (level == SnapshotLevel::BeforeAndAfter) {
    fmt::print("After:     {}\n", known(record.Time("After")));
  }
  if (m_arguments.LeftOut) {
    if (level != SnapshotLevel::None) PrintLeftOut("Before", "tblLeftOut");
    if (level == SnapshotLevel::BeforeAndAfter) PrintLeftOut("After", "tblLeftOut2");
  }
  return exitstatus::Done;
}

// Reads an analysis; a file that is none is told as such.
template <class Body>
auto clsCommands::OfAnalysis(Body&& body) {
  try {
    return body();
  } catch (const clsError& error) {
    if (error.Number() != errnum::NoSuchTable) throw;
    throw error.WithDescription(
        fmt::format("{} is an invalid or corrupt Sandrel Database. Choose a file that was made by "
                    "'sandrel-cli after'.",
                    m_arguments.File));
  }
}

int clsCommands::List() {
  const int page = PageByName(m_arguments.Page);
  clsPageWriter writer(m_arguments.File, stdout);
  OfAnalysis([&] { m_arguments.Json ? writer.WriteJson(page) : writer.WriteText(page); });
  return exitstatus::Done;
}

void clsCommands::PrintSection(const std::string& section) {
  for (const std::string& key : m_settings.Keys(section)) {
    fmt::print("{}\t{}\t{}\n", text::Escaped(section), text::Escaped(key),
               text::Escaped(m_settings.GetSetting(section, key)));
  }
}

// Settings can be made before there is a machine.
std::shared_ptr<clsMachine> clsCommands::MachineIfThere() {
  try {
    return OpenMachine();
  } catch (const clsError&) {
    return nullptr;
  }
}

// A folder that isn't there may come.
bool clsCommands::MayStore(const std::string& section, const std::string& text) {
  if (!text::EqualNoCase(section, "ScanFolders") || text.empty()) return true;
  const auto machine = MachineIfThere();
  return machine == nullptr || machine->FolderExists(text) ||
         m_shell.Ask(
             {fmt::format("There is no folder {} on the machine. Scan it all the same?", text),
              "Sandrel Manager", Buttons::YesNo, BoxIcon::Question}) == Answer::Yes;
}

void clsCommands::TellRemote() {
  clsScanSettings settings(m_settings);
  if (settings.RegScan() && settings.RemoteRegistry() && settings.RemoteName().empty()) {
    m_shell.Tell(
        "Remote scanning is on, and RemoteName names no computer: the registry of the "
        "machine itself is scanned.");
  }
}

int clsCommands::Settings() {
  const std::string& section = m_arguments.Section;
  const std::string& key = m_arguments.Key;
  if (m_arguments.HasText) {
    const std::string absent("\x01", 1);
    CheckSetting(section, key, m_arguments.Text, MachineIfThere().get());
    if (m_settings.GetSetting(section, key, absent) == m_arguments.Text) return exitstatus::Done;
    if (!MayStore(section, m_arguments.Text)) return m_shell.ExitStatus();
    const auto save = [&] { m_settings.SaveSetting(section, key, m_arguments.Text); };
    if (!IsScanSetting(section, key)) {
      save();
    } else if (!ChangeScanSettings(m_shell, m_settings, m_home, save)) {
      return m_shell.ExitStatus();
    }
    TellRemote();
  } else if (!key.empty()) {
    fmt::print("{}\n", text::Escaped(m_settings.GetSetting(section, key)));
  } else if (!section.empty()) {
    PrintSection(section);
  } else {
    for (const std::string& name : m_settings.Sections()) PrintSection(name);
  }
  return exitstatus::Done;
}

int clsCommands::Export() {
  const int page = PageByName(m_arguments.ExportPage);
  const std::size_t count = OfAnalysis([&] {
    return clsExports(m_shell, m_arguments.File)
        .ExportRegistry(page, m_arguments.Out, m_arguments.Match);
  });
  if (count == 0 && m_shell.ExitStatus() == exitstatus::Done) {
    m_shell.Refuse("No row of that page is to be exported; no file was written.");
  }
  return Print(fmt::format("{} value(s) exported: {}", count, m_arguments.Out));
}

int clsCommands::Copy() {
  const int page = PageByName(m_arguments.CopyPage);
  const auto machine = OpenMachine();
  clsCliShell::CatchInterrupts();
  const std::string summary = OfAnalysis([&] {
    return clsExports(m_shell, m_arguments.File).CopyFiles(page, m_arguments.Folder, *machine);
  });
  fmt::print("{}\n", summary);
  if (clsCliShell::WasInterrupted()) m_shell.Refuse("Stopped");
  return m_shell.ExitStatus();
}

// What would stop it is found out first: the command changes the machine, and can't be run twice.
int clsCommands::Watch() {
  const auto machine = OpenScannedMachine();
  const HostCommand command = clsHostCommands(machine.get()).Make(m_arguments.Command);
  const std::string& name = m_arguments.Command.front();
  clsHostCommands::Check(command, name);
  const clsHomeLock lock(m_home);
  clsSnapshots snapshots(m_shell, m_settings, m_home, machine);
  clsAnalysis analysis(m_shell, m_settings, m_home, machine);
  m_shell.OnInterrupt = [&] { snapshots.ConfirmCancelScan(); };
  clsCliShell::CatchInterrupts();
  const std::string path = clsFileWorks::Absolute(m_arguments.File);
  if (!analysis.MayCreate(path)) return m_shell.ExitStatus();
  snapshots.mnuSnapShotBefore_Click();
  if (m_shell.ExitStatus() != exitstatus::Done) return Print("");

  m_shell.SetStatusText("");
  clsShellWorks works(machine.get(), [&] {
    m_shell.DoEvents(false);
    return !clsCliShell::WasInterrupted();
  });
  const bool ended = works.SyncShell(command, 0, false, false);
  if (works.StartError() != 0) {
    throw ErrnoError(works.StartError(), fmt::format("Can't start {}", name));
  }
  // The interrupt may have ended the command too.
  if (!ended || clsCliShell::WasInterrupted()) {
    m_shell.Refuse("Stopped; the Before snapshot stays.");
    return m_shell.ExitStatus();
  }
  machine->CloseRegistry();
  if (!analysis.AfterAndViews(snapshots, path)) return Print("");
  fmt::print("Analysis Created: {}\n", text::Escaped(m_arguments.File));
  return works.ExitStatus();
}

int clsCommands::PrintToFile() {
  const std::string page = PageName(PageByName(m_arguments.PrintPage));
  OfAnalysis([&] { return ReadStat(dao::DBEngine::FirstWorkspace(), m_arguments.File, ""); });
  if (!MayOverwrite(m_shell, m_arguments.Out)) return m_shell.ExitStatus();
  return RunPrintHelper(m_arguments.File, m_arguments.Out, page);
}

int clsCommands::NoteRecords() {
  const auto machine = OpenMachine();
  clsSetupRecords(m_shell, m_settings, m_home, *machine)
      .ProcessSetupFiles(m_arguments.AfterInstall);
  return Print("Usage counts noted");
}

int clsCommands::ApplyRecords() {
  const auto machine = OpenMachine();
  OfAnalysis([&] { return ReadStat(dao::DBEngine::FirstWorkspace(), m_arguments.File, ""); });
  m_shell.State.AnalysisPath = clsFileWorks::Absolute(m_arguments.File);
  clsSetupRecords(m_shell, m_settings, m_home, *machine).UpdateSetupTables();
  return Print("Records of shared DLLs added: " + m_arguments.File);
}

int Failed(std::string_view why) {
  clsCliShell shell(false);
  shell.Fail(why);
  return shell.ExitStatus();
}

// What is wrong with the words of a command line, in one sentence.
std::string Complaint(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining();
  if (app.get_subcommands().empty() && !unknown.empty()) {
    return fmt::format("{} is no command.", unknown.front());
  }
  const std::string text = error.what();
  return text.ends_with('.') ? text : text + ".";
}

int Parse(int argc, char** argv) {
  Arguments arguments;
  CLI::App app(
      "Finds out what a software installation does to a Windows machine: a Wine prefix or an "
      "offline Windows volume.",
      "sandrel-cli");
  app.set_version_flag("--version", "sandrel-cli " SANDREL_VERSION);
  app.add_option(
         "--machine", arguments.Machine,
         "Folder of the machine to look at (else $SANDREL_MACHINE, $WINEPREFIX, the setting, "
         "~/.wine)")
      ->type_name("DIR");
  app.add_option("--home", arguments.Home, "Folder of the snapshots (else $SANDREL_HOME)")
      ->type_name("DIR");
  app.require_subcommand(1);
  app.fallthrough();

  int status = exitstatus::Done;
  const auto addTo = [&](CLI::App& parent, const char* name, const char* words,
                         int (clsCommands::*run)()) {
    CLI::App* sub = parent.add_subcommand(name, words);
    sub->callback([&arguments, &status, run] { status = (clsCommands(arguments).*run)(); });
    return sub;
  };
  const auto command = [&](const char* name, const char* words, int (clsCommands::*run)()) {
    return addTo(app, name, words, run);
  };
  const auto yes = [&](CLI::App* sub) {
    sub->add_flag("--yes", arguments.Yes, "Answer every question with yes");
  };
  yes(command("before", "Take the Before snapshot", &clsCommands::Before));
  CLI::App* after =
      command("after", "Take the After snapshot and write the analysis", &clsCommands::After);
  after->add_option("FILE", arguments.File, "The analysis to write")->required();
  yes(after);
  CLI::App* watch = command("watch", "Take both snapshots round a command and write the analysis",
                            &clsCommands::Watch);
  watch->add_option("FILE", arguments.File, "The analysis to write")->required();
  watch
      ->add_option("COMMAND", arguments.Command,
                   "What to run, after --: a program of the host, or a Windows program of the "
                   "machine's by its host or Windows path. Its exit status is passed on")
      ->required();
  yes(watch);
  command("replace", "Make the After snapshot the new Before snapshot", &clsCommands::Replace);
  command("status", "Show the machine and the snapshots that exist", &clsCommands::Status)
      ->add_flag("--left-out", arguments.LeftOut, "And what each snapshot left out, tab-separated");

  CLI::App* list = command("list", "Show a page of an analysis, tab-separated", &clsCommands::List);
  list->add_option("FILE", arguments.File, "The analysis")->required();
  list->add_option("PAGE", arguments.Page, "ShowStats, ShowNewFiles, ShowAllRegistry...")
      ->default_str("ShowStats");
  list->add_flag("--json", arguments.Json, "As JSON");
  CLI::App* settings = command("settings", "Show or change settings", &clsCommands::Settings);
  settings->add_option("SECTION", arguments.Section);
  settings->add_option("KEY", arguments.Key);
  CLI::Option* textOption = settings->add_option("TEXT", arguments.Text);
  settings->parse_complete_callback([&] { arguments.HasText = textOption->count() > 0; });
  yes(settings);

  CLI::App* exports = command("export", "Write registry values as a registry file (REGEDIT4)",
                              &clsCommands::Export);
  exports->add_option("FILE", arguments.File, "The analysis")->required();
  exports->add_option("OUT", arguments.Out, "The registry file to write")->required();
  exports->add_option("PAGE", arguments.ExportPage, "ShowNewRegistry...")
      ->default_str("ShowAllRegistry");
  exports->add_option("--match", arguments.Match, "Only rows that hold this text")
      ->type_name("TEXT");
  yes(exports);

  CLI::App* copy =
      command("copy", "Copy the new or changed files of the machine", &clsCommands::Copy);
  copy->add_option("FILE", arguments.File, "The analysis")->required();
  copy->add_option("FOLDER", arguments.Folder, "Where the copies go, as they lie below the drive")
      ->required();
  copy->add_option("PAGE", arguments.CopyPage, "ShowChangedFiles...")->default_str("ShowNewFiles");

  CLI::App* print =
      command("print", "Print a page of an analysis to a PDF file", &clsCommands::PrintToFile);
  print->add_option("FILE", arguments.File, "The analysis")->required();
  print->add_option("OUT", arguments.Out, "The PDF file to write")->required();
  print->add_option("PAGE", arguments.PrintPage, "ShowNewFiles, ShowAllRegistry...")
      ->default_str("ShowStats");
  yes(print);

  CLI::App* records = app.add_subcommand(
      "setup-records", "Records of shared DLLs whose usage count moved, from setupdll.mdb");
  records->require_subcommand(1);
  CLI::App* note = addTo(*records, "note", "Note the usage counts of the listed DLLs",
                         &clsCommands::NoteRecords);
  CLI::Option_group* when = note->add_option_group("when");
  when->add_flag("--before", arguments.BeforeInstall, "Before the installation");
  when->add_flag("--after", arguments.AfterInstall, "After the installation");
  when->require_option(1);
  CLI::App* apply = addTo(*records, "apply", "Add the records of those that moved to an analysis",
                          &clsCommands::ApplyRecords);
  apply->add_option("FILE", arguments.File, "The analysis")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& success) {
    return app.exit(success);  // --help, --version
  } catch (const CLI::ParseError& error) {
    return Failed(Complaint(app, error) + " See sandrel-cli --help.");
  }
  return status;
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
  try {
    const int status = Parse(argc, argv);
    if (std::fflush(stdout) != 0) throw ErrnoError(errno, "Can't write the output");
    return status;
  } catch (const std::exception& error) {
    return Failed(error.what());
  }
}

}  // namespace sandrel
