#include "snapshot/clsSnapshots.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/SnapshotFixture.h"

namespace sandrel::test {
namespace {

class clsSnapshotsTest : public SnapshotFixture {};

TEST_F(clsSnapshotsTest, BeforeRecordsTheMachineAndItsTime) {
  for (const char* file : {"README", "readme"})
    m_sample.WriteFile("C:\\A\\" + std::string(file), "");
  Before();
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  EXPECT_EQ(m_settings.GetSetting("ScanFolders", "1"), "C:");  // stored for the configuration
  EXPECT_EQ(Select("FileName FROM tblFiles WHERE FileName = 'readme'"), "README");
  EXPECT_EQ(Select("* FROM tblRegKey WHERE Hive = -2147483648"), "no row");  // classes stay out
  EXPECT_NE(Select("count(*) FROM tblRegValue"), "0");
  const clsSnapshotRecord record = m_snapshots.Record();
  EXPECT_NE(record.Time("Before"), "");
  EXPECT_EQ(m_shell.BeforeTime, "Last 'Before' Snapshot: " + record.Time("Before"));
  EXPECT_EQ(record.Machine("Before"), m_machine->Folder());
  EXPECT_TRUE(m_shell.Has("tell: Left out: 1 name that differs from another only in case."));
  EXPECT_FALSE(m_shell.State.Scanning);
  EXPECT_TRUE(IsWhole(Working()));
}

TEST_F(clsSnapshotsTest, AnEmptyScanMakesTheTablesAllTheSame) {
  Enable("DiskScan", false);
  Enable("RegScan", false);
  m_shell.State.BeforeSSCompleteNotify = true;
  Before();
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  EXPECT_EQ(Select("count(*) FROM tblFiles, tblIniValues"), "0");
  EXPECT_EQ(m_shell.Last(), "wizard");
  EXPECT_EQ(m_settings.GetSetting("ScanFolders", "1", "none"), "none");
}

TEST_F(clsSnapshotsTest, AsksBeforeItOverwrites) {
  Before();
  m_sample.WriteFile("C:\\new.txt", "");
  m_shell.Questions = {Answer::No};
  m_shell.State.BeforeSSCompleteNotify = true;
  Before();
  EXPECT_TRUE(
      m_shell.Has("ask: A 'Before' snapshot already exists. Overwrite the existing snapshot?"));
  EXPECT_EQ(m_shell.Last(), "wizard");
  EXPECT_EQ(Count("new.txt"), "0");

  ASSERT_TRUE(m_snapshots.AfterSnapshot());
  m_shell.Questions = {Answer::No, Answer::No};
  EXPECT_FALSE(m_snapshots.AfterSnapshot());
  EXPECT_TRUE(m_shell.Has("ask: An 'After' snapshot already exists."));
  Before();
  EXPECT_TRUE(m_shell.Has("BOTH snapshots will be overwritten!\n\nOverwrite the existing snaps"));
  EXPECT_EQ(Level(), SnapshotLevel::BeforeAndAfter);
}

// Cancelled, aborted or failed: each leaves what there was, and nothing else in the home folder.
TEST_F(clsSnapshotsTest, WhatDoesNotEndWellLeavesTheOldSnapshots) {
  const auto stop = [this](const std::string& step) {
    m_shell.Log.clear();
    m_shell.OnEvents = [this, step] {
      if (m_shell.Last().starts_with(step)) m_snapshots.ConfirmCancelScan();
    };
  };
  const auto state = [this] {
    return Select("count(*), min(Id) FROM tblFiles") + Select("count(*) FROM tblRegValue") +
           m_snapshots.Record().Time("Before") + m_snapshots.Record().Time("After");
  };
  std::string kept;
  for (const bool exists : {false, true}) {
    for (const char* step : {"status: Scanning Folder", "status: Scanning Registry - HKEY_LOCAL"}) {
      stop(step);
      EXPECT_EQ(Before(), SnapshotResult::Failed);
      EXPECT_TRUE(m_shell.Has("ask: Cancel Scanning")) << step;
      EXPECT_TRUE(m_shell.Has("status: Stopping scan. Please wait..."));
      EXPECT_EQ(m_shell.Last(), "status: Scan Stopped");
      EXPECT_FALSE(m_shell.Has("HKEY_USERS"));
      EXPECT_EQ(HasWorking(), exists);
      EXPECT_FALSE(m_shell.State.Scanning);
      if (!exists) continue;
      EXPECT_FALSE(m_snapshots.AfterSnapshot());
      EXPECT_EQ(Level(), SnapshotLevel::BeforeAndAfter);
      EXPECT_EQ(state(), kept);
    }
    m_shell.OnEvents = nullptr;
    EXPECT_EQ(Before(), SnapshotResult::Complete);
    m_sample.WriteFile("C:\\later.txt", "");
    ASSERT_TRUE(m_snapshots.AfterSnapshot());
    kept = state();
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_home.Path()), {}),
            2);  // and a lock
}

TEST_F(clsSnapshotsTest, AnErrorInTheWalkCanBeRetriedIgnoredOrAborted) {
  m_settings.SaveSetting("ScanFolders", "1", "C:\\Program Files");
  m_settings.SaveSetting("ScanFolders", "2", "C:\\Away");
  m_shell.Errors = {Answer::Retry, Answer::Ignore};
  Before();
  EXPECT_TRUE(m_shell.Has(
      "You may wish to exclude file(s) or folder(s) using the Configuration option of Sandrels' "
      "Settings menu. [clsScanDrive.DoXTree] [frmSandrel.mnuSnapShotBefore]"));
  EXPECT_EQ(m_shell.Last(), "status: Before Snapshot Complete");
  EXPECT_EQ(Count("readme.txt"), "1");
  EXPECT_EQ(Before(), SnapshotResult::Failed);  // aborted: cleaned up as after a cancel
  EXPECT_EQ(m_shell.Last(), "unload");
  EXPECT_EQ(Count("readme.txt"), "1");
  EXPECT_FALSE(m_shell.State.Scanning);
}

// A commit in the middle of the walk meets a reader; what the walk had recorded before is
// recognised when Retry starts it again.
TEST_F(clsSnapshotsTest, ARetriedWalkGoesOnOverItsOwnRows) {
  for (int i = 0; i < 150; ++i) {
    m_sample.WriteFile("C:\\A\\" + std::to_string(i) + "\\x.ini", "[s]\nk=1\nk=2\n");
  }
  m_settings.SaveSetting("ScanFolders", "1", "C:\\A");
  m_settings.SaveSetting("Enabled", "RegScan", "0");
  sqlite3* reader = nullptr;
  m_shell.OnEvents = [&] {
    if (reader != nullptr || !m_shell.Last().starts_with("status: Scanning Folder")) return;
    for (const auto& item : std::filesystem::directory_iterator(m_home.Path())) {
      if (item.path().filename().string().starts_with(".sandrel-")) {
        sqlite3_open(item.path().c_str(), &reader);
      }
    }
    sqlite3_exec(reader, "BEGIN; SELECT count(*) FROM tblFiles", nullptr, nullptr, nullptr);
  };
  m_shell.OnError = [&] { sqlite3_exec(reader, "COMMIT", nullptr, nullptr, nullptr); };
  m_shell.Errors = {Answer::Retry};
  Before();
  sqlite3_close(reader);
  EXPECT_TRUE(m_shell.Has("error 3218"));
  EXPECT_EQ(m_shell.Last(), "status: Before Snapshot Complete");
  EXPECT_EQ(Count("x.ini"), "150");
  EXPECT_EQ(Select("count(*), max(Occurance) FROM tblIniValues"), "300|1");
  EXPECT_EQ(Select("count(*) FROM tblFiles WHERE PathId NOT IN (SELECT Id FROM tblPaths)"), "0");
}

TEST_F(clsSnapshotsTest, WhatIsMissingIsToldBeforeAnythingIsChanged) {
  Before();
  m_sample.SetSystemReg("[Software\\\\Cut] 1\n\"a\"=hex:01,\\\n");
  m_machine->CloseRegistry();
  Before();
  EXPECT_TRUE(m_shell.Has("system.reg"));
  EXPECT_EQ(m_shell.Last(), "unload");
  EXPECT_EQ(Count("readme.txt"), "1");
  EXPECT_FALSE(m_snapshots.AfterSnapshot());
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  m_sample.SetSystemReg(SampleMachine::SystemKeys());
  m_settings.SaveSetting("ExcludeFiles", "1", "C:\\windows\\*.ini");
  Before();
  EXPECT_TRUE(m_shell.Has("C:\\windows\\*.ini\n\nInvalid procedure call or argument"));
  EXPECT_EQ(Count("readme.txt"), "1");
}

TEST_F(clsSnapshotsTest, ASnapshotThatAnotherProgramWritesIsNotDeleted) {
  Before();
  sqlite3* writer = nullptr;
  sqlite3_open(Working().c_str(), &writer);
  sqlite3_exec(writer, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  Before();  // aborted: what it had not begun to change stays
  sqlite3_close(writer);
  EXPECT_TRUE(m_shell.Has("error 3218"));
  EXPECT_EQ(m_shell.Last(), "unload");
  EXPECT_EQ(Level(), SnapshotLevel::Before);
}

TEST_F(clsSnapshotsTest, AsksWhenTheMachineIsAnother) {
  Before();
  clsSnapshotRecord record = m_snapshots.Record();
  record.Set("Before", "then", "/other/prefix");
  record.Write(Working());
  m_shell.Questions = {Answer::No};
  EXPECT_FALSE(m_snapshots.AfterSnapshot());
  EXPECT_TRUE(m_shell.Has("ask: The 'Before' snapshot was taken of the machine in /other/prefix."));
  EXPECT_TRUE(m_snapshots.AfterSnapshot());
  m_snapshots.mnuSnapShotRollUp_Click();
  EXPECT_EQ(m_snapshots.Record().Machine("Before"), m_machine->Folder());
  m_shell.Log.clear();
  EXPECT_TRUE(m_snapshots.AfterSnapshot());
  EXPECT_FALSE(m_shell.Has("ask: The 'Before' snapshot was taken"));
}

TEST_F(clsSnapshotsTest, ASnapshotOfAnEarlierVersionIsNotComparedWith) {
  Before();
  ASSERT_TRUE(m_snapshots.AfterSnapshot());
  for (const char* table : {"tblSettings", "tblLeftOut", "tblLeftOut2"}) {
    Rows(Working(), std::string("DROP TABLE ") + table);
  }
  m_snapshots.mnuSnapShotRollUp_Click();
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  EXPECT_FALSE(m_snapshots.AfterSnapshot());
  EXPECT_TRUE(m_shell.Has("taken by an earlier version"));
}

TEST_F(clsSnapshotsTest, ReplaceMakesAfterTheNewBefore) {
  Before();
  m_sample.WriteFile("C:\\new.txt", "");
  ASSERT_TRUE(m_snapshots.AfterSnapshot());
  clsSnapshotRecord record = m_snapshots.Record();
  record.Set("After", "then", "there");
  record.Write(Working());
  m_snapshots.mnuSnapShotRollUp_Click();
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  EXPECT_EQ(m_shell.BeforeTime, "Last 'Before' Snapshot: then");
  EXPECT_EQ(m_snapshots.Record().Time("After"), "then");
  EXPECT_EQ(Select("count(*) FROM sqlite_master WHERE name LIKE 'tbl%2%'"), "0");
  // Without an After snapshot it fails and leaves everything as it is.
  m_shell.Errors = {Answer::Retry, Answer::Ignore};
  m_snapshots.mnuSnapShotRollUp_Click();
  EXPECT_TRUE(m_shell.Has("error 3265"));
  EXPECT_EQ(Count("new.txt"), "1");
}

// Settings are one for all homes; what a home's snapshots are of is the home's own.
TEST_F(clsSnapshotsTest, AfterScansWhatBeforeHasScanned) {
  m_sample.WriteFile("C:\\Extra\\known.txt", "");
  m_settings.SaveSetting("ScanFolders", "1", "C:\\windows");
  Before();
  m_settings.SaveSetting("ScanFolders", "2", "C:\\Extra");
  m_settings.SaveSetting("RegScan", "HKEY_USERS", "False");
  Enable("VersionInfo", true);
  m_shell.Questions = {Answer::No};
  EXPECT_FALSE(m_snapshots.AfterSnapshot());
  EXPECT_TRUE(
      m_shell.Has("taken:\n\n    Version info: on now\n    Folder C:\\Extra: new\n    "
                  "HKEY_USERS: not scanned now\n\nTake the 'After'"));
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  After();
  EXPECT_EQ(Analysis("SELECT Value FROM tblStats WHERE id <= 9"), Lines(9, "0"));
  EXPECT_EQ(Stat("        C:\\Extra"), "no row");
  EXPECT_EQ(Stat("        HKEY_USERS"), "Yes");
}

}  // namespace
}  // namespace sandrel::test
