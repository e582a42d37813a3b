#include "config/clsFolderSource.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "support/SampleMachine.h"
#include "support/TempFolder.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> RootTexts(clsFolderSource& source) {
  std::vector<std::string> texts;
  const std::vector<clsFolderSource::Root> roots = source.Roots();
  for (const clsFolderSource::Root& root : roots) texts.push_back(root.Name + "|" + root.Path);
  return texts;
}

void ExpectPaths(const clsFolderSource& source,
                 const std::vector<std::pair<const char*, std::string>>& typed) {
  for (const auto& [text, path] : typed) EXPECT_EQ(source.Normalise(text), path) << text;
}

TEST(clsFolderSource, GivesTheHostsFolders) {
  const test::TempFolder temp;
  const std::string home = temp.Path();
  const test::Variables variables{{"HOME", home + "/"}};
  for (const char* folder : {"b", "A/deep", ".hidden", "C"}) {
    std::filesystem::create_directories(temp.Of(folder));
  }
  std::filesystem::create_directory_symlink("A", temp.Of("link"));
  std::filesystem::create_symlink("gone", temp.Of("dangling"));
  std::ofstream(temp.Of("b/file")) << "x";

  const auto source = HostFolders();
  EXPECT_THAT(RootTexts(*source), ElementsAre("Home|" + home, "/|/"));
  EXPECT_THAT(source->Children(home), ElementsAre(".hidden", "A", "b", "C", "link"));
  EXPECT_THAT(source->Children(temp.Of("gone")), IsEmpty());
  EXPECT_FALSE(source->HasChildren(temp.Of("b")));
  EXPECT_TRUE(source->IsFolder(temp.Of("link")));
  EXPECT_FALSE(source->IsFolder(temp.Of("b/file")));
  ExpectPaths(*source, {{"", ""},
                        {"/", "/"},
                        {" //usr//lib/ ", "/usr/lib"},
                        {"~", home},
                        {"~/x/", home + "/x"},
                        {"~x", home + "/~x"},
                        {"a/b", home + "/a/b"}});
  EXPECT_EQ(source->PartsBelow("/usr", "/usrlocal"), std::nullopt);
  EXPECT_EQ(source->PartsBelow("/usr", "/USR/lib"), std::nullopt);
}

TEST(clsFolderSource, GivesTheMachinesFoldersByWindowsPaths) {
  test::SampleMachine sample;
  const test::TempFolder other;
  sample.MapDrive('d', other.Path());
  sample.MakeFolder("C:\\users\\tester\\.cache");
  const auto source = MachineFolders(clsMachine::Open(sample.Folder()));
  EXPECT_THAT(RootTexts(*source), ElementsAre("C:|C:\\", "D:|D:\\"));
  EXPECT_THAT(source->Children("c:\\USERS\\tester"), ElementsAre(".cache", "Temp"));
  EXPECT_THAT(source->Children("C:\\gone"), IsEmpty());
  EXPECT_TRUE(source->IsFolder("C:\\WINDOWS"));
  EXPECT_FALSE(source->IsFolder("C:\\windows\\win.ini"));
  ExpectPaths(*source, {{"", ""},
                        {"c:", "C:\\"},
                        {" c:\\ ", "C:\\"},
                        {"C:/Program Files//", "C:\\Program Files"},
                        {"\\windows", "C:\\windows"},
                        {"c:\\a\\..\\.\\b..\\c\\..", "c:\\b.."},
                        {"\\x\\..\\..\\", "C:\\"}});
  EXPECT_EQ(source->PartsBelow("D:\\", "C:\\x"), std::nullopt);
}

}  // namespace
}  // namespace sandrel
