#include "config/clsSettings.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "common/clsFileWorks.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

class clsSettingsTest : public testing::Test {
 protected:
  TempFolder m_temp;
  std::string m_path = m_temp.Of("deep/settings.ini");
  clsSettings m_settings{m_path};
};

TEST_F(clsSettingsTest, KeepsTextsOfEveryKind) {
  EXPECT_EQ(m_settings.GetSetting("Enabled", "DiskScan", "1"), "1");
  EXPECT_FALSE(clsFileWorks::FileExists(m_path));
  const std::vector<std::string> texts = {
      "C:\\Program Files\\", "",    " blanks ", "\"quoted\"", "two\nlines\r\t", "a=b;c#d", "[x]",
      "\u00E4\u2603",        "\\n", "50%"};
  for (const std::string& text : texts) m_settings.SaveSetting("S [1]", "k=" + text, text);
  const std::vector<std::string> keys = {"[k]", ";k", " k "};
  for (const char* text : {"1", "2"}) {
    for (const std::string& key : keys) m_settings.SaveSetting("other", key, key + text);
  }
  clsSettings again(m_path);
  for (const std::string& text : texts) EXPECT_EQ(again.GetSetting("s [1]", "K=" + text), text);
  for (const std::string& key : keys) EXPECT_EQ(again.GetSetting("Other", key), key + "2");
  EXPECT_EQ(again.Keys("OTHER"), keys);
  EXPECT_EQ(again.Sections(), (std::vector<std::string>{"S [1]", "other"}));
}

TEST_F(clsSettingsTest, ReadsWhatAPersonWroteAndKeepsTheirLines) {
  std::filesystem::create_directories(m_temp.Of("deep"));
  std::ofstream(m_path) << "\xEF\xBB\xBF# mine\n[Enabled]\n ; note\n DiskScan = 0 \r\nnonsense\n"
                           "\"q\" = v\n[ScanFolders]\n1=C:\\\n";
  EXPECT_EQ(m_settings.GetSetting("enabled", "diskscan"), "0");
  m_settings.SaveSetting("Enabled", "DiskScan", "1");
  EXPECT_EQ(clsFileWorks::ReadWhole(m_path),
            "# mine\n\n[Enabled]\n ; note\nDiskScan=1\nnonsense\nq=v\n\n[ScanFolders]\n1=C:\\\n");
}

TEST_F(clsSettingsTest, DeletesKeysAndSections) {
  EXPECT_EQ(NumberOf([&] { m_settings.DeleteSetting("a"); }), errnum::InvalidArgument);
  m_settings.SaveSetting("a", "x", "x");
  EXPECT_EQ(NumberOf([&] { m_settings.DeleteSetting("a", "y"); }), errnum::InvalidArgument);
  m_settings.SaveSetting("b", "x", "kept");
  m_settings.DeleteSetting("A");
  EXPECT_EQ(m_settings.GetSetting("a", "x", "gone"), "gone");
  m_settings.DeleteSetting("b", "X");
  EXPECT_EQ(m_settings.GetSetting("b", "x", "gone"), "gone");
}

TEST_F(clsSettingsTest, SeesWhatAnotherProcessWrites) {
  m_settings.SaveSetting("s", "mine", "1");
  clsSettings other(m_path);
  other.SaveSetting("s", "theirs", "2");
  EXPECT_EQ(m_settings.GetSetting("s", "theirs"), "2");
  m_settings.SaveSetting("s", "mine", "3");
  EXPECT_EQ(other.GetSetting("s", "mine") + other.GetSetting("s", "theirs"), "32");
}

TEST_F(clsSettingsTest, TwoProcessesLoseNothing) {
  std::vector<pid_t> children;
  for (const char* name : {"a", "b", "c"}) {
    const pid_t child = fork();
    if (child == 0) {
      clsSettings own(m_path);
      for (int i = 0; i < 30; ++i) own.SaveSetting(name, std::to_string(i), "x");
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) waitpid(child, nullptr, 0);
  for (const char* name : {"a", "b", "c"}) EXPECT_EQ(m_settings.Keys(name).size(), 30U) << name;
}

TEST_F(clsSettingsTest, AFailedWriteChangesNothing) {
  m_settings.SaveSetting("s", "k", "old");
  clsSettings bad(m_path + "/below/settings.ini");  // a file stands where its folder would be
  EXPECT_NE(NumberOf([&] { bad.SaveSetting("s", "k", "new"); }), 0);
  EXPECT_EQ(bad.GetSetting("s", "k", "none") + m_settings.GetSetting("s", "k"), "noneold");
}

}  // namespace
}  // namespace sandrel::test
