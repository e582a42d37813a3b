#include "common/clsPathText.h"

#include <gtest/gtest.h>

namespace sandrel {
namespace {

TEST(clsPathText, TakesPathsApart) {
  EXPECT_EQ(clsPathText::TextAfterLast("C:\\a\\b.ini", "\\"), "b.ini");
  EXPECT_EQ(clsPathText::TextAfterLast("b.ini", "\\"), "b.ini");
  EXPECT_EQ(clsPathText::TextBeforeLast("C:\\a\\b.ini", "\\"), "C:\\a");
  EXPECT_EQ(clsPathText::TextBeforeLast("b.ini", "\\"), "");
  for (const auto& [name, extension] :
       {std::pair("system.ini.bak", "bak"), {".ini", "ini"}, {"ini.", ""}, {"ini", ""}})
    EXPECT_EQ(clsPathText::ExtensionOf(name), extension) << name;
}

TEST(clsPathText, PutsFoldersIntoOneForm) {
  for (const char* path : {"C:\\a", "C:\\a\\"}) {
    EXPECT_EQ(clsPathText::AddSeparator(path), "C:\\a\\");
    EXPECT_EQ(clsPathText::RemoveSeparator(path), "C:\\a");
  }
  EXPECT_EQ(clsPathText::NormaliseFolder("  C:/Program Files//x\\\\ "), "C:\\Program Files\\x\\");
  EXPECT_EQ(clsPathText::NormaliseFolder("C:"), "C:");
  EXPECT_EQ(clsPathText::NormaliseFolder("\\\\box\\\\share"), "\\\\box\\share");
  EXPECT_EQ(clsPathText::MachineNameForConnect(" BOX "), "\\\\BOX");
  EXPECT_EQ(clsPathText::MachineNameForConnect("\\\\BOX\\"), "\\\\BOX");
  EXPECT_EQ(clsPathText::BareMachineName(" \\\\BOX "), "BOX");
}

}  // namespace
}  // namespace sandrel
