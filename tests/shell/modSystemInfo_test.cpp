#include "shell/modSystemInfo.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "common/text.h"
#include "platform/machine/clsMachine.h"
#include "support/SampleMachine.h"

namespace sandrel {
namespace {

constexpr const char* Tool = R"(SOFTWARE\Microsoft\Shared Tools\MSINFO)";
constexpr const char* Tools = R"(SOFTWARE\Microsoft\Shared Tools Location)";

class modSystemInfo : public testing::Test {
 protected:
  void Set(const char* key, const char* name, std::uint32_t type, const std::string& data) {
    m_registry->RegCreateKeyEx(hkey::LocalMachine, key);
    m_registry->RegSetValueEx(hkey::LocalMachine, key, name, type, data);
  }
  void SetText(const char* key, const char* name, const std::string& text) {
    Set(key, name, regtype::Sz, text::ToUtf16Le(text + '\0'));
  }
  std::string Get(const char* name) {
    return GetKeyValue(*m_registry, hkey::LocalMachine, "Test", name);
  }
  std::string Path() {
    return SystemInfoPath(*m_registry, [this](const std::string& path) { return path == m_file; });
  }

  std::unique_ptr<clsRegistry> m_registry = MakeMemoryRegistry();
  std::string m_file;
};

TEST_F(modSystemInfo, ReadsTextsAndNumbers) {
  EXPECT_EQ(Get("a"), "");
  SetText("Test", "fits", std::string(1023, 'x'));
  SetText("Test", "long", std::string(1024, 'x'));
  Set("Test", "two zeros", regtype::Sz, text::ToUtf16Le(std::string("a\0\0", 3)));
  Set("Test", "number", regtype::Dword, std::string("\x0a\xff\x00\x12", 4));
  Set("Test", "small", regtype::Dword, std::string("\x01\x00\x00\x00", 4));
  Set("Test", "binary", regtype::Binary, "abc");
  EXPECT_EQ(Get("fits"), std::string(1023, 'x'));
  EXPECT_EQ(Get("long"), "");
  EXPECT_EQ(Get("two zeros"), std::string("a\0", 2));
  EXPECT_EQ(Get("number"), "&h120FFA");
  EXPECT_EQ(Get("small"), "&h001");
  EXPECT_EQ(Get("binary"), "");
}

TEST_F(modSystemInfo, FindsTheToolInOneOfTwoPlaces) {
  EXPECT_EQ(Path(), "");
  SetText(Tools, "MSINFO", R"(C:\Info)");
  EXPECT_EQ(Path(), "");
  m_file = R"(C:\Info\MSINFO32.EXE)";
  EXPECT_EQ(Path(), m_file);
  SetText(Tool, "PATH", R"(C:\gone.exe)");  // isn't looked for
  EXPECT_EQ(Path(), R"(C:\gone.exe)");
}

TEST_F(modSystemInfo, StartsWhatTheMachineHasAndRaisesNothing) {
  test::SampleMachine sample;
  const auto start = [&] {
    return StartSystemInfo([&] { return clsMachine::Open(sample.Folder()); });
  };
  EXPECT_FALSE(start());
  sample.SetSystemReg(test::SampleMachine::SystemKeys() +
                      "[Software\\\\Microsoft\\\\Shared Tools\\\\MSINFO] 1\n"
                      "\"PATH\"=\"C:\\\\a tool\"\n");
  EXPECT_FALSE(start());
  sample.WriteFile("C:\\a tool", "#!/bin/sh\n: > \"$WINEPREFIX/started\"\n");
  std::filesystem::permissions(sample.HostPath("C:\\a tool"), std::filesystem::perms::owner_all);
  EXPECT_TRUE(start());
  for (int i = 0; i < 500 && !std::filesystem::exists(sample.Folder() + "/started"); ++i)
    usleep(10000);
  EXPECT_TRUE(std::filesystem::exists(sample.Folder() + "/started"));
  sample.SetSystemReg("damaged");
  EXPECT_FALSE(start());
}

}  // namespace
}  // namespace sandrel
