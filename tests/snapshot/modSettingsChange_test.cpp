#include "snapshot/modSettingsChange.h"

#include <filesystem>

#include "support/NumberOf.h"
#include "support/SnapshotFixture.h"

namespace sandrel::test {
namespace {

constexpr const char* Question =
    "snapshot will become invalid and be cleared if you continue.\n\nSave anyway?";

class modSettingsChangeTest : public SnapshotFixture {
 protected:
  bool Change(const std::string& text) {
    m_shell.Log.clear();
    return ChangeScanSettings(m_shell, m_settings, m_home, [&] {
      m_settings.SaveSetting("Enabled", "VersionInfo", text);
      m_settings.SaveSetting("ScanFolders", "1", "C:\\" + text);
    });
  }
  std::string Stored() {
    clsSettings settings(m_settings.Path());
    return settings.GetSetting("Enabled", "VersionInfo", "none") + " " +
           settings.GetSetting("ScanFolders", "1", "none");
  }
  std::string TimeOf(const char* which) { return m_snapshots.Record().Time(which); }
};

TEST_F(modSettingsChangeTest, AsksByWhatWouldBeLost) {
  EXPECT_TRUE(Change("0"));
  EXPECT_TRUE(m_shell.Log.empty());
  EXPECT_EQ(Stored(), "0 C:\\0");
  m_settings.SaveSetting("ScanFolders", "1", "C:");

  Before();
  m_shell.Questions = {Answer::No};
  EXPECT_FALSE(Change("1"));
  EXPECT_EQ(m_shell.Last(), std::string("ask: Your 'Before' ") + Question);
  EXPECT_EQ(Stored(), "0 C:");
  EXPECT_EQ(Level(), SnapshotLevel::Before);

  After();
  EXPECT_TRUE(Change("1"));
  EXPECT_EQ(m_shell.Last(),
            "ask: Your 'Before' and 'After' snapshots will become invalid and be cleared if you "
            "continue.\n\nSave anyway?");
  EXPECT_EQ(Stored(), "1 C:\\1");
  EXPECT_FALSE(HasWorking());
  EXPECT_EQ(TimeOf("Before") + TimeOf("After"), "");
}

// The settings and the snapshots change together or not at all.
TEST_F(modSettingsChangeTest, AFailureLosesNothing) {
  Before();
  const std::string time = TimeOf("Before");
  const std::string stored = Stored();
  sqlite3* writer = nullptr;
  sqlite3_open(Working().c_str(), &writer);
  sqlite3_exec(writer, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  EXPECT_TRUE(Raises(errnum::RecordLocked, "another program", [&] { Change("2"); }));
  sqlite3_close(writer);
  EXPECT_EQ(Stored(), stored);
  EXPECT_EQ(TimeOf("Before"), time);
  EXPECT_EQ(Level(), SnapshotLevel::Before);

  const std::string lock = m_settings.Path() + ".lock";
  std::filesystem::remove(lock);
  std::filesystem::create_directory(lock);  // the settings can't be written
  EXPECT_NE(NumberOf([&] { Change("2"); }), 0);
  EXPECT_EQ(Stored(), stored);
  EXPECT_EQ(Level(), SnapshotLevel::Before);
  std::filesystem::remove(lock);
  EXPECT_TRUE(Change("2"));
  EXPECT_EQ(Level(), SnapshotLevel::None);
}

}  // namespace
}  // namespace sandrel::test
