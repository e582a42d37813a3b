// A sample machine with a home folder, settings, a recording shell and the snapshot commands over
// them.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "common/clsFileWorks.h"
#include "snapshot/clsAnalysis.h"
#include "snapshot/clsSnapshots.h"
#include "support/Rows.h"
#include "support/SampleMachine.h"
#include "support/ShellRecorder.h"
#include "support/TempFolder.h"

namespace sandrel::test {

class SnapshotFixture : public testing::Test {
 protected:
  std::string Working() const { return m_home.WorkingDatabase(); }
  std::string Stat(const std::string& description) {
    return Cell(m_analysisPath,
                "SELECT Value FROM tblStats WHERE Description = '" + description + "'");
  }
  SnapshotResult Before() { return m_snapshots.mnuSnapShotBefore_Click(); }
  void After() {
    m_machine->CloseRegistry();
    m_analysis.AfterInto(m_snapshots, m_analysisPath);
  }
  Lines Analysis(const std::string& sql) { return Rows(m_analysisPath, sql); }
  /// The first row of the working database's answer, after "SELECT".
  std::string Select(const std::string& sql) { return Cell(Working(), "SELECT " + sql); }
  std::string Count(const std::string& name) {
    return Select("count(*) FROM tblFiles WHERE FileName = '" + name + "'");
  }
  bool HasWorking() const { return clsFileWorks::FileExists(Working()); }
  SnapshotLevel Level() { return m_snapshots.GetSnapshotLevel(); }
  void Enable(const char* what, bool on) {
    m_settings.SaveSetting("Enabled", what, on ? "1" : "0");
  }

  SampleMachine m_sample;
  TempFolder m_temp;
  std::string m_analysisPath = m_temp.Of("x.mdb");
  clsSettings m_settings{m_temp.Of("settings.ini")};
  clsHome m_home = clsHome::Find(m_temp.Of("home"));
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
  ShellRecorder m_shell;
  clsSnapshots m_snapshots{m_shell, m_settings, m_home, m_machine};
  clsAnalysis m_analysis{m_shell, m_settings, m_home, m_machine};
};

}  // namespace sandrel::test
