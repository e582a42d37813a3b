// The program as a user runs it: a process of its own, its output and its exit status.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

#include "Places.h"
#include "common/clsFileWorks.h"
#include "config/clsHome.h"
#include "store/clsTableMaint.h"
#include "support/Rows.h"
#include "support/SampleMachine.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

class SandrelCli : public testing::Test {
 protected:
  struct Result {
    int Status = -1;
    std::string Out, Err;
  };

  SandrelCli() { std::filesystem::create_directory(m_temp.Of("home")); }

  /// Starts the program; the process is the caller's to wait for.
  pid_t Start(std::vector<std::string> arguments, rlim_t fileLimit = RLIM_INFINITY) {
    arguments.insert(arguments.begin(),
                     {SANDREL_CLI, "--machine", m_machine, "--home", m_temp.Of("home")});
    const pid_t child = fork();
    if (child != 0) return child;
    setenv("SANDREL_SETTINGS", m_temp.Of("settings.ini").c_str(), 1);
    setenv("LC_ALL", "C", 1);
    setenv("TZ", "UTC", 1);
    if (fileLimit != RLIM_INFINITY) {
      const rlimit limit{fileLimit, fileLimit};
      setrlimit(RLIMIT_FSIZE, &limit);
      std::signal(SIGXFSZ, SIG_IGN);
    }
    dup2(open(m_temp.Of("out").c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600), STDOUT_FILENO);
    dup2(open(m_temp.Of("err").c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600), STDERR_FILENO);
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    execv(words[0], words.data());
    _exit(127);
  }

  Result Finish(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
            clsFileWorks::ReadWhole(m_temp.Of("out")), clsFileWorks::ReadWhole(m_temp.Of("err"))};
  }

  Result Run(std::vector<std::string> arguments) { return Finish(Start(std::move(arguments))); }

  /// One line on standard error, and the exit status.
  void ExpectFailure(std::vector<std::string> arguments, int status, const std::string& part) {
    const Result result = Run(std::move(arguments));
    EXPECT_EQ(result.Status, status) << result.Err;
    EXPECT_NE(result.Err.find(part), std::string::npos) << result.Err;
    EXPECT_EQ(std::count(result.Err.begin(), result.Err.end(), '\n'), 1) << result.Err;
    EXPECT_EQ(result.Out, "");
  }

  std::string Working() { return m_temp.Of("home/SandrelTemp.zqd"); }
  std::string File() { return m_temp.Of("x.mdb"); }

  SampleMachine m_sample;
  TempFolder m_temp;
  std::string m_machine = m_sample.Folder();
};

TEST_F(SandrelCli, GoesTheWholeRoad) {
  EXPECT_EQ(Run({"status"}).Out, "Machine:   " + m_machine + " (Wine prefix)\nDrive:     C: is " +
                                     m_machine + "/drive_c\nWindows:   C:\\windows\n" +
                                     "Hive:      HKEY_LOCAL_MACHINE is " + m_machine +
                                     "/system.reg\nHive:      HKEY_CURRENT_USER is " + m_machine +
                                     "/user.reg\nHive:      HKEY_USERS\\.DEFAULT is " + m_machine +
                                     "/userdef.reg\nUser:      S-1-5-21-0-0-0-1000 is "
                                     "HKEY_CURRENT_USER\nHome:      " +
                                     m_temp.Of("home") + "\nSnapshots: none\n");
  ExpectFailure({"after", File()}, 1, "There is no 'Before' snapshot");
  ExpectFailure({"replace"}, 1, "There is no 'After' snapshot");
  m_sample.WriteFile("C:\\a:b", "");
  EXPECT_EQ(Run({"before"}).Out, "Before Snapshot Complete\n");
  EXPECT_THAT(Run({"status", "--left-out"}).Out,
              testing::EndsWith("\nBefore\tC:\\a:b\tname that Windows can't have\n"));
  m_sample.Remove("C:\\a:b");
  EXPECT_EQ(Run({"before"}).Status, 1);  // a question
  m_sample.WriteFile("C:\\New\\a b.txt", "12345");
  m_sample.SetTime("C:\\New\\a b.txt", 1000000000);
  m_sample.SetUserReg(SampleMachine::UserKeys() +
                      "[Software\\\\N] 1\n\"tab\"=\"a\\tb\\n\"\n\"d\"=dword:00000007\n\n");
  const Result after = Run({"after", File()});
  EXPECT_EQ(after.Out + after.Err, "Analysis Created: " + File() + "\n");  // no progress in a pipe
  EXPECT_EQ(Run({"list", File(), "SHOWNEWFILES"}).Out,
            "Path Name\tFile Name\tDate\tSize\tAttributes\nC:\\New\\\ta b.txt\t2001-09-09 "
            "01:46:40\t5\tA\n");
  EXPECT_EQ(Run({"list", File(), "ShowNewRegistry"}).Out,
            "Hive\tBranch\tValue Name\tValue\tValue Type\n"
            "HKEY_CURRENT_USER\tSoftware\\N\td\t7\tDWORD\n"
            "HKEY_CURRENT_USER\tSoftware\\N\ttab\ta\\tb\\n\tSTRING\n"
            "HKEY_USERS\tS-1-5-21-0-0-0-1000\\Software\\N\td\t7\tDWORD\n"
            "HKEY_USERS\tS-1-5-21-0-0-0-1000\\Software\\N\ttab\ta\\tb\\n\tSTRING\n");
  const auto json = nlohmann::json::parse(Run({"list", File(), "ShowAllFiles", "--json"}).Out);
  EXPECT_EQ(json.at(0)["Size"], 5);
  EXPECT_EQ(json.at(0)["Date"], "2001-09-09 01:46:40");
  EXPECT_EQ(nlohmann::json::parse(Run({"list", File(), "ShowDeletedFiles", "--json"}).Out).size(),
            0U);
  // The statistics count the rows that the pages show now.
  Rows(File(), "DELETE FROM tblNewRegistryEnteries WHERE ValueName = 'd'");
  EXPECT_TRUE(Run({"list", File()}).Out.starts_with("Description\tValue\nRegistry - New\t2\n"));
  EXPECT_EQ(Run({"after", File()}).Status, 1);  // both the file and the After snapshot are there
  EXPECT_EQ(Run({"after", File(), "--yes"}).Status, 0);
  EXPECT_EQ(Run({"replace"}).Status, 0);
  EXPECT_NE(Run({"status"}).Out.find("Snapshots: Before\n"), std::string::npos);
  EXPECT_TRUE(IsWhole(Working()) && IsWhole(File()));
}

TEST_F(SandrelCli, ExportsValuesAndCopiesFiles) {
  Run({"before"});
  for (const char* name : {"C:\\New\\Deep\\b.txt", "C:\\New\\gone.txt"})
    m_sample.WriteFile(name, name);
  m_sample.SetUserReg(
      SampleMachine::UserKeys() +
      "[Software\\\\N] 1\n\"a\"=\"x\"\n\"b\"=dword:0000002a\n\"c\\\"d\"=\"\"\n\"e\\\"f\"=\"\"\n\n");
  ASSERT_EQ(Run({"after", File()}).Status, 0);

  const std::string out = m_temp.Of("x.reg");
  const Result done = Run({"export", File(), out, "--match", "CURRENT_user"});
  EXPECT_EQ(done.Out, "2 value(s) exported: " + out + "\n");
  std::string named;
  for (const char* name : {"c\"d", "e\"f"}) {
    named += "sandrel-cli: Left out: HKEY_CURRENT_USER\\Software\\N \"" + std::string(name) +
             "\": A name with quotes or backslashes can't stand in a registry file.\n";
  }
  EXPECT_EQ(done.Err, named);
  const std::string exported = clsFileWorks::ReadWhole(out);
  EXPECT_EQ(exported,
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\N]\r\n\"a\"=\"x\"\r\n"
            "\"b\"=dword:0000002a\r\n");
  ExpectFailure({"export", File(), out}, 1, "Overwrite the existing file?");
  ExpectFailure({"export", File(), out, "--match", "nothing"}, 1, "no file was written");
  EXPECT_EQ(clsFileWorks::ReadWhole(out), exported);
  EXPECT_EQ(Run({"export", File(), out, "--yes"}).Status, 0);

  std::filesystem::remove(m_sample.HostPath("C:\\New\\gone.txt"));
  EXPECT_EQ(Run({"copy", File(), m_temp.Of("to")}).Out,
            "1 File(s) were successfully copied.\n1 File(s) were NOT copied because they no longer "
            "exist.\n");
  EXPECT_EQ(clsFileWorks::ReadWhole(m_temp.Of("to/New/Deep/b.txt")), "C:\\New\\Deep\\b.txt");
}

TEST_F(SandrelCli, CopiesOfSeveralDrivesStayApartAndGoOnAfterAFailure) {
  const std::filesystem::path other = m_temp.Of("other");
  std::filesystem::create_directory(other);
  m_sample.MapDrive('d', other.string());
  Run({"settings", "ScanFolders", "1", "C:"});
  Run({"settings", "ScanFolders", "2", "D:"});
  ASSERT_EQ(Run({"before"}).Status, 0);
  m_sample.WriteFile("C:\\same.txt", "c");
  m_sample.WriteFile("C:\\stuck.txt", "c");
  std::ofstream(other / "same.txt") << "d";
  ASSERT_EQ(Run({"after", File()}).Status, 0);
  std::filesystem::create_directories(m_temp.Of("to/C/stuck.txt"));
  const Result copy = Run({"copy", File(), m_temp.Of("to")});
  EXPECT_EQ(copy.Status, 2);
  EXPECT_EQ(copy.Out, "2 File(s) were successfully copied.\n1 Error(s) were ignored\n");
  EXPECT_NE(copy.Err.find("C:\\stuck.txt: Can't write"), std::string::npos) << copy.Err;
  EXPECT_EQ(clsFileWorks::ReadWhole(m_temp.Of("to/C/same.txt")), "c");
  EXPECT_EQ(clsFileWorks::ReadWhole(m_temp.Of("to/D/same.txt")), "d");
  for (const char* name : {"C:\\same.txt", "C:\\stuck.txt"}) m_sample.Remove(name);
  std::filesystem::remove(other / "same.txt");
  const Result none = Run({"copy", File(), m_temp.Of("to")});
  EXPECT_EQ(std::to_string(none.Status) + none.Err, "2sandrel-cli: No file was copied.\n");
}

TEST_F(SandrelCli, TellsWhatIsWrongInOneLine) {
  std::ofstream(m_temp.Of("junk.mdb")) << std::string(9000, 'j');
  ExpectFailure({"list", m_temp.Of("junk.mdb")}, 2, "is an invalid or corrupt Sandrel Database.");
  ExpectFailure({"list", m_temp.Of("none.mdb")}, 2, "none.mdb");
  ExpectFailure({"list", m_temp.Path()}, 2, "it is a folder");
  ExpectFailure({"list", "/dev/null"}, 2, "no regular file");
  ExpectFailure({"list", File(), "ShowNothing"}, 2, "Pages: ShowNewRegistry, ");
  ExpectFailure({"nonsense"}, 2, "nonsense is no command. See sandrel-cli --help.");
  ExpectFailure({"setup-records", "note", "--before"}, 2, "setupdll.mdb");
  ExpectFailure({"setup-records", "note", "--before", "--after"}, 2, "--help");
  ExpectFailure({}, 2, "--help");
  ExpectFailure({"export", File(), "x.reg", "ShowNewFiles"}, 2, "holds no registry values");
  ExpectFailure({"copy", m_temp.Of("junk.mdb"), m_temp.Of("to")}, 2, "corrupt Sandrel Database");
  {
    const clsHome home = clsHome::Find(m_temp.Of("home"));
    const clsHomeLock lock(home), nested(home);
    ExpectFailure({"before"}, 2, "Another snapshot command works on " + home.Path());
  }
  Run({"settings", "RegScan", "RemoteName", "far"});
  Run({"settings", "Enabled", "RemoteRegistry", "1"});
  ExpectFailure({"before"}, 2, "The remote registry on far cannot be accessed");
  Run({"settings", "Enabled", "RemoteRegistry", "0"});
  std::filesystem::remove(m_machine + "/system.reg");
  ExpectFailure({"before"}, 2, "system.reg");
  m_machine = m_temp.Of("nowhere");
  ExpectFailure({"before"}, 2, "drive_c");
  EXPECT_FALSE(clsFileWorks::FileExists(Working()));
  // A working database that is no database is no snapshot.
  std::ofstream(Working()) << std::string(9000, 'j');
  EXPECT_NE(Run({"status"}).Out.find("Snapshots: none\n"), std::string::npos);
}

TEST_F(SandrelCli, SettingsAskBeforeTheyClearSnapshots) {
  ASSERT_EQ(Run({"before"}).Status, 0);
  EXPECT_EQ(Run({"settings", "scanfolders", "1"}).Out, "C:\n");
  ExpectFailure({"settings", "ScanFolders", "2", "C:\\windows"}, 1,
                "Your 'Before' snapshot will become invalid");
  ExpectFailure({"settings", "ScanFolders", "2", "D:\\"}, 2, "on a drive that the machine lacks");
  ExpectFailure({"settings", "ScanFolders", "2", "C:\\none"}, 1, "There is no folder C:\\none");
  ExpectFailure({"settings", "ExcludeFiles", "1", "C:\\windows\\*"}, 2, "begins with '*'");
  ExpectFailure({"settings", "ExcludeFiles", "x", "C:\\a"}, 2, "\"x\" is no number of an entry");
  ExpectFailure({"settings", "Enabled", "DiskScan", "7"}, 2, "it is 0 or 1");
  ExpectFailure({"settings", "Enabled", "Diskscam", "1"}, 2, "they are DiskScan, ");
  ExpectFailure({"settings", "RegScan", "HKEY_USERS", "1"}, 2, "it is True or False");
  EXPECT_NE(
      Run({"settings", "Enabled", "RemoteRegistry", "1", "--yes"}).Err.find("names no computer"),
      std::string::npos);
  EXPECT_EQ(Run({"settings", "Enabled", "RemoteRegistry", "0", "--yes"}).Err, "");
  ASSERT_EQ(Run({"before"}).Status, 0);
  EXPECT_EQ(Run({"settings", "ScanFolders", "1", "C:"}).Status, 0);       // no change
  EXPECT_EQ(Run({"settings", "Enabled", "Toolbar", "False"}).Status, 0);  // not of the scan
  EXPECT_TRUE(clsFileWorks::FileExists(Working()));
  EXPECT_EQ(Run({"settings", "ScanFolders", "2", "C:\\windows", "--yes"}).Status, 0);
  EXPECT_FALSE(clsFileWorks::FileExists(Working()));
  EXPECT_EQ(Run({"settings", "ScanFolders"}).Out,
            "ScanFolders\t1\tC:\nScanFolders\t2\tC:\\windows\n");
}

class SandrelCliStopped : public SandrelCli {
 protected:
  SandrelCliStopped() {
    for (int i = 0; i < 4000; ++i)
      m_sample.WriteFile("C:\\many\\f" + std::to_string(i % 400) + "\\n" + std::to_string(i), "");
  }

  /// Sends the signal once the working database in the making has grown to so many bytes.
  Result Interrupt(pid_t child, int signal, std::uintmax_t size) {
    for (int i = 0; i < 2000 && InTheMaking() < size; ++i) usleep(1000);
    kill(child, signal);
    return Finish(child);
  }

  std::uintmax_t InTheMaking() const {
    for (const auto& item : std::filesystem::directory_iterator(m_temp.Of("home"))) {
      std::error_code gone;
      if (item.path().filename().string().starts_with(".sandrel-")) return item.file_size(gone);
    }
    return 0;
  }

  /// Kills the command at moments spread over its run; `check` looks at what each has left.
  void KillAtManyMoments(
      const std::vector<std::string>& command, const std::function<void()>& check,
      const std::function<void()>& prepare = [] {}) {
    using Clock = std::chrono::steady_clock;
    prepare();
    const auto begun = Clock::now();
    ASSERT_EQ(Run(command).Status, 0);
    const auto whole = Clock::now() - begun;
    constexpr int Moments = 20;
    for (int i = 0; i < Moments && !HasFailure(); ++i) {
      prepare();
      const pid_t child = Start(command);
      std::this_thread::sleep_for(whole * i / Moments);
      kill(child, SIGKILL);
      Finish(child);
      SCOPED_TRACE(command[0] + " killed after " + std::to_string(i) + "/20 of its time");
      check();
    }
  }
};

TEST_F(SandrelCliStopped, AnInterruptCancelsCleanly) {
  const Result before = Interrupt(Start({"before"}), SIGINT, 100000);
  EXPECT_EQ(before.Status, 1) << before.Err;
  EXPECT_EQ(before.Err, "sandrel-cli: Scan Stopped\n");
  EXPECT_FALSE(clsFileWorks::FileExists(Working()));
  ASSERT_EQ(Run({"before"}).Status, 0);
  std::ofstream(File()) << "older";
  const auto size = std::filesystem::file_size(Working());
  EXPECT_EQ(Interrupt(Start({"after", File(), "--yes"}), SIGINT, size + 50000).Status, 1);
  EXPECT_EQ(Cell(Working(), "SELECT count(*) FROM sqlite_master WHERE name LIKE '%2%'"), "0");
  EXPECT_EQ(ReadSnapshotLevel(Working()), SnapshotLevel::Before);
  EXPECT_EQ(clsFileWorks::ReadWhole(File()), "older");
  EXPECT_EQ(InTheMaking(), 0U);
  EXPECT_TRUE(IsWhole(Working()));
}

TEST_F(SandrelCliStopped, AKilledCommandLeavesTheOldStateOrTheNewOne) {
  ASSERT_EQ(Run({"before"}).Status, 0);
  const std::string old = Cell(Working(), "SELECT count(*) FROM tblFiles");
  m_sample.WriteFile("C:\\many\\new.txt", "");
  const std::string fresh = std::to_string(std::stoi(old) + 1);
  KillAtManyMoments({"before", "--yes"}, [&] {
    EXPECT_TRUE(IsWhole(Working()));
    const std::string files = Cell(Working(), "SELECT count(*) FROM tblFiles");
    EXPECT_TRUE(files == old || files == fresh) << files;
    EXPECT_EQ(ReadSnapshotLevel(Working()), SnapshotLevel::Before);
  });
  const std::string counts = "SELECT group_concat(Value) FROM tblStats WHERE id <= 9";
  m_sample.WriteFile("C:\\many\\newer.txt", "");
  KillAtManyMoments({"after", File(), "--yes"}, [&] {
    EXPECT_TRUE(IsWhole(Working()) && IsWhole(File()));
    EXPECT_EQ(Cell(File(), counts), "0,0,0,1,0,0,0,0,0");
  });
  int number = 0;
  KillAtManyMoments(
      {"replace"},
      [&] {
        EXPECT_TRUE(IsWhole(Working()));
        const std::string latest =
            Cell(Working(), "SELECT count(*) FROM tblFiles WHERE FileName = 'r" +
                                std::to_string(number) + "'");
        EXPECT_EQ(ReadSnapshotLevel(Working()),
                  latest == "1" ? SnapshotLevel::Before : SnapshotLevel::BeforeAndAfter);
      },
      [&] {
        m_sample.WriteFile("C:\\r" + std::to_string(++number), "");
        EXPECT_EQ(Run({"after", File(), "--yes"}).Status, 0);
      });
  EXPECT_EQ(InTheMaking(), 0U) << "what a killed run left is taken over by the next one";
}

TEST_F(SandrelCliStopped, AKilledExportOrCopyLeavesOldFilesOrNewOnes) {
  ASSERT_EQ(Run({"before"}).Status, 0);
  std::string values = "[Software\\\\N] 1\n";
  for (int i = 0; i < 3000; ++i) values += "\"v" + std::to_string(i) + "\"=\"text\"\n";
  m_sample.SetUserReg(SampleMachine::UserKeys() + values + "\n");
  const std::string fresh(2000000, 'f');
  const std::string old(1000000, 'o');
  for (const char* name : {"C:\\New\\a", "C:\\New\\b", "C:\\New\\c"})
    m_sample.WriteFile(name, fresh);
  ASSERT_EQ(Run({"after", File()}).Status, 0);
  const std::string out = m_temp.Of("x.reg");
  ASSERT_EQ(Run({"export", File(), out}).Status, 0);
  const std::string exported = clsFileWorks::ReadWhole(out);
  KillAtManyMoments(
      {"export", File(), out, "--yes"},
      [&] {
        const std::string now = clsFileWorks::ReadWhole(out);
        EXPECT_TRUE(now == "old" || now == exported) << now.size();
      },
      [&] { clsFileWorks::ReplaceWhole(out, "old"); });
  std::filesystem::create_directories(m_temp.Of("to/New"));
  const auto copies = [&](auto&& each) {
    for (const char* name : {"a", "b", "c"}) each(m_temp.Of("to/New/") + name);
  };
  const std::vector<std::string> copy = {"copy", File(), m_temp.Of("to")};
  KillAtManyMoments(
      copy,
      [&] {
        copies([&](const std::string& path) {
          const std::string now = clsFileWorks::ReadWhole(path);
          EXPECT_TRUE(now == old || now == fresh) << path << now.size();
        });
      },
      [&] { copies([&](const std::string& path) { clsFileWorks::ReplaceWhole(path, old); }); });
  EXPECT_EQ(Run(copy).Status, 0);
  for (const auto& item : std::filesystem::directory_iterator(m_temp.Of("to/New")))
    EXPECT_FALSE(item.path().filename().string().starts_with(".")) << item.path();
}

TEST_F(SandrelCliStopped, AFullDiskIsToldAndLeavesNothingHalf) {
  // A limit on the size of files stands for the disk.
  const Result before = Finish(Start({"before"}, 150000));
  EXPECT_EQ(before.Status, 2);
  EXPECT_NE(before.Err.find(m_temp.Of("home")), std::string::npos) << before.Err;
  EXPECT_EQ(ReadSnapshotLevel(Working()), SnapshotLevel::None);
  ASSERT_EQ(Run({"before"}).Status, 0);
  const auto size = std::filesystem::file_size(Working());
  EXPECT_EQ(Finish(Start({"after", File()}, size + 50000)).Status, 2);
  EXPECT_EQ(ReadSnapshotLevel(Working()), SnapshotLevel::Before);
  EXPECT_FALSE(clsFileWorks::FileExists(File()));
  EXPECT_TRUE(IsWhole(Working()));
}

TEST_F(SandrelCli, WatchesACommand) {
  const std::string added = m_sample.HostPath("C:\\New\\a.txt");
  const auto watch = [&](std::vector<std::string> command, std::vector<std::string> first = {}) {
    std::vector<std::string> arguments = {"watch"};
    arguments.insert(arguments.end(), first.begin(), first.end());
    arguments.insert(arguments.end(), {File(), "--"});
    arguments.insert(arguments.end(), command.begin(), command.end());
    return arguments;
  };
  const std::string install =
      "mkdir -p '" + added.substr(0, added.rfind('/')) + "'; echo list > '" + added + "'; exit 42";
  const Result done = Run(watch({"sh", "-c", install}));
  EXPECT_EQ(done.Status, 42);
  EXPECT_EQ(done.Out, "Analysis Created: " + File() + "\n");
  EXPECT_EQ(done.Err, "");
  EXPECT_EQ(Cell(File(), "SELECT PathName || FileName FROM tblNewFiles"), "C:\\New\\a.txt");

  // What stops it is found before anything is changed.
  const std::string marker = m_temp.Of("marker");
  ExpectFailure(watch({"touch", marker}), 1, "Overwrite the existing file?");
  ExpectFailure(watch({"no-such-program"}, {"--yes"}), 2, "There is no program no-such-program");
  ExpectFailure(watch({File()}, {"--yes"}), 2, "Can't start " + File());
  ExpectFailure({"watch", m_temp.Of("none/x.mdb"), "--", "touch", marker}, 2, "there is no folder");
  EXPECT_FALSE(clsFileWorks::FileExists(marker));
  EXPECT_EQ(Run({"replace"}).Status, 0) << "both snapshots are still there";
  ExpectFailure(watch({"sh", "-c", "kill -INT $PPID"}, {"--yes"}), 1, "Stopped");
  EXPECT_EQ(Run(watch({"touch", marker}, {"--yes"})).Status, 0);
  EXPECT_EQ(Cell(File(), "SELECT count(*) FROM tblNewFiles"), "0");
}

TEST_F(SandrelCli, PrintsAPage) {
  Run({"before"});
  ASSERT_EQ(Run({"after", File()}).Status, 0);
  const std::string pdf = m_temp.Of("out.pdf");
  const Result done = Run({"print", File(), pdf, "showALLfiles"});
  EXPECT_EQ(done.Out + done.Err, "1 page(s) printed: " + pdf + "\n");
  const std::string before = clsFileWorks::ReadWhole(pdf);
  EXPECT_TRUE(before.starts_with("%PDF-"));
  ExpectFailure({"print", File(), pdf}, 1, "Overwrite the existing file?");
  ExpectFailure({"print", File(), pdf, "--yes", "ShowNothing"}, 2, "There is no page");
  ExpectFailure({"print", File(), File(), "--yes"}, 2, "that file holds an analysis");
  ExpectFailure({"export", File(), File(), "--yes"}, 2, "that file holds an analysis");
  ExpectFailure({"export", File(), Working(), "--yes"}, 2, "that file holds an analysis or snap");
  ExpectFailure({"after", Working(), "--yes"}, 2, "that file holds the snapshots");
  EXPECT_TRUE(IsWhole(File()) && IsWhole(Working()));
  std::filesystem::create_symlink(m_machine + "/user.reg", m_temp.Of("link"));
  const std::string hive = clsFileWorks::ReadWhole(m_temp.Of("link"));
  Run({"settings", "Some", "key", "1"});
  for (const char* command : {"print", "export", "after"}) {
    const auto into = [&](const std::string& target) {
      std::vector<std::string> words = {command, target, "--yes"};
      if (words[0] != "after") words.insert(words.begin() + 1, File());
      return words;
    };
    ExpectFailure(into(m_temp.Of("link")), 2, "that file holds the registry of a machine");
    ExpectFailure(into(m_temp.Of("settings.ini")), 2, "that file holds the settings");
  }
  EXPECT_EQ(clsFileWorks::ReadWhole(m_temp.Of("link")), hive);
  ExpectFailure({"setup-records", "apply", m_temp.Of("link")}, 2, "corrupt Sandrel Database");
  ExpectFailure({"print", File(), m_temp.Of(""), "--yes"}, 2, "no regular file");
  // A full disk costs neither the old file nor an error's text.
  const Result full = Finish(Start({"print", File(), pdf, "--yes"}, 4096));
  EXPECT_EQ(full.Status, 2);
  EXPECT_NE(full.Err.find("Can't write " + pdf), std::string::npos) << full.Err;
  EXPECT_EQ(clsFileWorks::ReadWhole(pdf), before);
}

}  // namespace
}  // namespace sandrel::test
