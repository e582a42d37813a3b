#include "wizard/clsShellWorks.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "platform/machine/clsMachine.h"
#include "platform/process/modCommandLine.h"
#include "support/SampleMachine.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Words = std::vector<std::string>;

TEST(CommandLine, SplitsAsWindowsDoes) {
  const auto isProgram = [](const std::string& name) {
    return name == R"(C:\My Tools\set up.exe)" || name == "C:\\My";
  };
  struct Case {
    const char* Text;
    Words Expected;
  };
  for (const Case& c :
       {Case{"", {}},
        {"  setup.exe  /S ", {"setup.exe", "/S"}},
        {R"("C:\Program Files\a.exe" /D=C:\x\)", {R"(C:\Program Files\a.exe)", R"(/D=C:\x\)"}},
        {R"("a b"c)", {"a b", "c"}},
        {"\"not closed", {"not closed"}},
        {R"(x "a\\" b\"c "d""e" "")", {"x", R"(a\)", "b\"c", "d\"e", ""}},
        {R"(x \\server\\share \\\"q)", {"x", R"(\\server\\share)", R"(\"q)"}},
        {"x $HOME;`ls` 'a b'", {"x", "$HOME;`ls`", "'a", "b'"}}}) {
    EXPECT_EQ(SplitCommandLine(c.Text), c.Expected) << c.Text;
  }
  EXPECT_EQ(SplitCommandLine(R"(C:\My Tools\set up.exe /S)", isProgram),
            (Words{"C:\\My", "Tools\\set", "up.exe", "/S"}));
  EXPECT_EQ(SplitCommandLine(R"(D:\My Tools\x.exe /S)", isProgram).front(), "D:\\My");
}

class HostCommands : public testing::Test {
 protected:
  HostCommands() {
    m_sample.WriteProgram("C:\\Install Me\\Setup.EXE", 0, 0);
    m_sample.WriteFile("C:\\x.msi", "");
    m_sample.WriteProgram("C:\\windows\\tidyup.exe", 0, 0);
    std::filesystem::create_directories(m_temp.Of("bin"));
    for (const char* program : {"bin/wine", "tool"}) Script(program, "exit 7");
  }
  void Script(const std::string& name, const std::string& text) {
    clsFileWorks::ReplaceWhole(m_temp.Of(name), "#!/bin/sh\n" + text + "\n");
    chmod(m_temp.Of(name).c_str(), 0755);
  }
  Words Make(const std::string& line) { return clsHostCommands(m_machine.get()).Make(line).Words; }
  std::string Refusal(const clsMachine* machine, const std::string& line) {
    try {
      clsHostCommands(machine).Make(line);
    } catch (const clsError& error) {
      EXPECT_EQ(error.Number(), errnum::Machine);
      return error.Description();
    }
    return "";
  }

  test::SampleMachine m_sample;
  test::TempFolder m_temp;
  test::Variables m_path{{"PATH", m_temp.Of("bin") + ":/usr/bin:/bin"}};
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
};

TEST_F(HostCommands, KnowHowToRunEachKindOfProgram) {
  const std::string wine = m_temp.Of("bin/wine");
  const std::string host = m_sample.HostPath("C:\\Install Me\\Setup.EXE");
  EXPECT_EQ(Make(R"(c:\install me\setup.exe /S "a b")"),
            (Words{wine, R"(c:\install me\setup.exe)", "/S", "a b"}));
  EXPECT_EQ(Make('"' + host + "\" /S"), (Words{wine, host, "/S"}));
  EXPECT_EQ(Make(m_sample.HostPath("C:\\x.msi") + " /q"),
            (Words{wine, "msiexec", "/i", "C:\\x.msi", "/q"}));
  EXPECT_EQ(Make("tidyup"), (Words{wine, R"(C:\windows\tidyup.exe)"}));
  EXPECT_EQ(Make(m_temp.Of("tool") + " C:\\x"), (Words{m_temp.Of("tool"), "C:\\x"}));
  EXPECT_EQ(Make("sh -c x").front(), "/usr/bin/sh");
  for (const char* none : {"", "no-such-program", "/no/such", "C:\\none.exe"}) {
    EXPECT_EQ(Make(none), Words{}) << none;
  }
}

TEST_F(HostCommands, RefuseWhatCannotRunHere) {
  const std::string setup = m_sample.HostPath("C:\\Install Me\\Setup.EXE");
  std::filesystem::create_directories(m_temp.Of("volume/Windows/System32/config"));
  const auto volume = clsMachine::Open(m_temp.Of("volume"));
  EXPECT_THAT(Refusal(volume.get(), '"' + setup + '"'),
              testing::HasSubstr("offline Windows volume in " + m_temp.Of("volume")));
  EXPECT_EQ(Refusal(volume.get(), m_temp.Of("tool")), "");
  const test::Variables bare{{"PATH", m_temp.Of("none")}};
  EXPECT_THAT(Refusal(m_machine.get(), '"' + setup + '"'),
              testing::HasSubstr("Wine isn't installed"));
  Script("far.msi", "");
  const test::Variables path{{"PATH", m_temp.Of("bin")}};
  EXPECT_THAT(Refusal(m_machine.get(), m_temp.Of("far.msi")),
              testing::HasSubstr("lies on no drive"));
}

class ShellWorks : public HostCommands {
 protected:
  bool Sync(const std::string& line, std::int32_t timeOut = 0, bool idle = false) {
    const auto start = steady_clock::now();
    const bool signalled = m_works.SyncShell(line, timeOut, idle, false);
    m_took = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    return signalled;
  }
  bool m_goOn = true;
  int m_passes = 0;
  milliseconds m_took{0};
  clsShellWorks m_works{m_machine.get(), [this] {
                          ++m_passes;
                          return m_goOn;
                        }};
};

TEST_F(ShellWorks, WaitsForTheEndAndPassesMessages) {
  EXPECT_TRUE(Sync("sh -c \"sleep 0.3; exit 5\""));
  EXPECT_EQ(m_works.ExitStatus(), 5);
  EXPECT_GE(m_passes, 5);
  EXPECT_GE(m_took, milliseconds(280));
  EXPECT_TRUE(Sync("sh -c \"kill -9 $$\""));
  EXPECT_EQ(m_works.ExitStatus(), 137);
  EXPECT_TRUE(Sync(R"("C:\Install Me\Setup.EXE")"));  // the wine of this test
  EXPECT_EQ(m_works.ExitStatus(), 7);
  EXPECT_TRUE(Sync("sh -c \"[ $WINEPREFIX = " + m_sample.Folder() + " ]\""));
  EXPECT_EQ(m_works.ExitStatus(), 0);
}

TEST_F(ShellWorks, EndsTheWaitWithoutTheProgram) {
  EXPECT_FALSE(Sync("sleep 3", 200));
  EXPECT_GE(m_took, milliseconds(1150));  // a second more than asked
  EXPECT_LT(m_took, milliseconds(2500));
  EXPECT_TRUE(Sync("sleep 3", 0, true));
  EXPECT_LT(m_took, milliseconds(500));
  EXPECT_FALSE(Sync("no-such-program"));
  EXPECT_EQ(m_works.StartError(), 0);
  clsFileWorks::ReplaceWhole(m_temp.Of("text"), "no program");
  EXPECT_FALSE(Sync(m_temp.Of("text")));
  EXPECT_EQ(m_works.StartError(), EACCES);
  m_goOn = false;
  EXPECT_FALSE(Sync("sleep 3"));
  EXPECT_LT(m_took, milliseconds(500));
}

}  // namespace
}  // namespace sandrel
