#include "export/clsSandrelFileCopy.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "common/clsFileWorks.h"
#include "support/Rows.h"
#include "support/SampleMachine.h"
#include "support/ShellRecorder.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

class ProgressRecorder final : public clsCopyProgress {
 public:
  std::vector<std::string> Log;
  int Percent = -1;
  std::size_t CancelAt = 1000;  // files shown

  void Show() override { Log.emplace_back("show"); }
  void SetFile(std::string_view name) override { Log.emplace_back(name); }
  void SetFolder(std::string_view text) override { Log.emplace_back(text); }
  void SetMessage(std::string_view) override {}
  void SetProgress(int percent) override { Percent = percent; }
  bool CancelAnimate() const override { return Log.size() / 2 >= CancelAt; }
  void Close() override { Log.emplace_back("close"); }
};

class clsSandrelFileCopyTest : public testing::Test {
 protected:
  test::Lines Copy(const std::vector<std::string>& files, const std::string& prefix) {
    test::Lines results;
    std::int64_t total = 100;
    clsSandrelFileCopy(m_shell, *m_machine, m_progress)
        .CopyFiles(files, To(), prefix, results, total);
    return results;
  }
  std::string To(const std::string& name = "") const { return m_temp.Of("to/" + name); }
  std::string Content(const std::string& name) const { return clsFileWorks::ReadWhole(To(name)); }

  test::SampleMachine m_sample;
  test::TempFolder m_temp;
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
  test::ShellRecorder m_shell;
  ProgressRecorder m_progress;
};

TEST_F(clsSandrelFileCopyTest, KeepsWhatLiesBelowThePrefix) {
  m_sample.WriteFile("C:\\Acme\\Deep\\\u00E4.txt", "deep");
  m_sample.WriteFile("C:\\Acme\\top.txt", "top");
  m_sample.SetTime("C:\\Acme\\top.txt", 1000000000);
  EXPECT_EQ(
      Copy({"C:\\Acme\\Deep\\\u00E4.txt", "C:\\Acme\\top.txt", "C:\\Acme\\gone.txt"}, "C:\\ACME"),
      (test::Lines{"2 File(s) were successfully copied.",
                   "1 File(s) were NOT copied because they no longer exist."}));
  EXPECT_EQ(Content("Deep/\u00E4.txt"), "deep");
  struct stat status {};
  ASSERT_EQ(stat(To("top.txt").c_str(), &status), 0);
  EXPECT_EQ(status.st_mtim.tv_sec, 1000000000);
  EXPECT_EQ(m_progress.Percent, 100);
  EXPECT_EQ(m_progress.Log[1], "\u00E4.txt");
  EXPECT_EQ(m_progress.Log[2], "'C:\\Acme\\Deep' to '" + To("Deep") + "'");
  EXPECT_EQ(m_progress.Log.back(), "close");
}

TEST_F(clsSandrelFileCopyTest, WithoutAPrefixTheLaterOfTwoNamesStays) {
  m_sample.WriteFile("C:\\a\\x.txt", "first, and longer");
  m_sample.WriteFile("C:\\b\\x.txt", "second");
  EXPECT_EQ(Copy({"C:\\a\\x.txt", "C:\\b\\x.txt"}, ""),
            test::Lines{"2 File(s) were successfully copied."});
  EXPECT_EQ(Content("x.txt"), "second");
  EXPECT_EQ(Copy({}, ""), test::Lines{"0 File(s) were successfully copied."});
}

TEST_F(clsSandrelFileCopyTest, ErrorsAreAskedAboutAndCounted) {
  for (const char* file : {"C:\\a\\x.txt", "C:\\a\\y.txt"}) m_sample.WriteFile(file, "x");
  std::filesystem::create_directories(To("x.txt"));  // no file can take its place
  m_shell.Errors = {Answer::Retry, Answer::Ignore, Answer::Abort};
  EXPECT_EQ(Copy({"C:\\a\\x.txt", "C:\\a\\y.txt"}, ""),
            (test::Lines{"1 File(s) were successfully copied.", "1 Error(s) were ignored"}));
  EXPECT_TRUE(m_shell.Has("[clsFileWorks.CopyFiles]"));
  EXPECT_EQ(Copy({"C:\\a\\x.txt", "C:\\a\\y.txt"}, ""),
            test::Lines{"0 File(s) were successfully copied."});
  EXPECT_FALSE(m_shell.Has("unload"));
  m_progress.Log.clear();
  m_progress.CancelAt = 2;
  EXPECT_EQ(Copy({"C:\\a\\y.txt", "C:\\a\\y.txt", "C:\\a\\y.txt"}, ""),
            test::Lines{"1 File(s) were successfully copied."});
}

TEST_F(clsSandrelFileCopyTest, ADestinationThatCannotBeMadeIsNoMissingFile) {
  std::filesystem::create_symlink("gone", m_temp.Of("to"));
  m_sample.WriteFile("C:\\a\\x.txt", "x");
  EXPECT_EQ(Copy({"C:\\a\\x.txt"}, ""), test::Lines{"0 File(s) were successfully copied."});
  EXPECT_TRUE(m_shell.Has(m_temp.Of("to")));
}

// Whatever an analysis holds, nothing outside the destination is written and no file outside the
// machine's folders is read.
TEST_F(clsSandrelFileCopyTest, NothingLeadsOutOfTheDestination) {
  m_sample.WriteFile("C:\\Acme\\x.txt", "x");
  std::filesystem::create_directories(m_temp.Of("outside"));
  std::filesystem::create_directories(To());
  std::filesystem::create_directory_symlink("../outside", To("link"));
  std::filesystem::create_symlink("../outside/victim", To("x.txt"));
  const std::string up = "C:\\Acme\\..\\..\\system.reg";
  m_sample.WriteFile("C:\\Acme\\link\\x.txt", "x");
  m_shell.Errors.assign(10, Answer::Ignore);
  EXPECT_EQ(Copy({up, "C:\\Acme\\link\\x.txt", "C:\\", "Acme", ""}, "C:\\Acme"),
            (test::Lines{"0 File(s) were successfully copied.",
                         "2 File(s) were NOT copied because they no longer exist.",
                         "3 Error(s) were ignored"}));
  EXPECT_TRUE(m_shell.Has("error -2147221429: Cannot create directory " + To("../..")));
  // A link at the file's own place gives way to the file.
  EXPECT_EQ(Copy({"C:\\Acme\\x.txt"}, ""), test::Lines{"1 File(s) were successfully copied."});
  EXPECT_TRUE(std::filesystem::is_empty(m_temp.Of("outside")));
  EXPECT_EQ(Content("x.txt"), "x");
  EXPECT_EQ(Copy({up}, "")[0], "0 File(s) were successfully copied.");
}

}  // namespace
}  // namespace sandrel
