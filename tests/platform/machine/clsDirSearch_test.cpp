#include "platform/machine/clsDirSearch.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <filesystem>
#include <thread>

#include "platform/machine/clsMachine.h"
#include "support/NumberOf.h"
#include "support/SampleMachine.h"

namespace sandrel {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class clsDirSearchTest : public testing::Test {
 protected:
  std::vector<std::string> Names(std::string_view folder, int mask) {
    clsDirSearch search = m_machine->Dir(folder, mask);
    std::vector<std::string> names;
    std::string name;
    while (search.Next(name)) names.push_back((search.IsFolder() ? "+" : "") + name);
    m_leftOut.Add(search.LeftOutItems());
    return names;
  }
  void Link(std::string_view target, const std::string& windowsPath) {
    std::filesystem::create_symlink(target, m_sample.HostPath(windowsPath));
  }

  clsLeftOut m_leftOut;  // of all searches
  test::SampleMachine m_sample;
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
};

TEST_F(clsDirSearchTest, GivesFilesOrFoldersInByteOrder) {
  for (const char* file : {"C:\\d\\b.txt", "C:\\d\\B2.txt", "C:\\d\\.hidden", "C:\\d\\\xC3\xA9.txt",
                           "C:\\d\\a\\x", "C:\\d\\.git\\x", "C:\\d\\Z\\x"}) {
    m_sample.WriteFile(file, "");
  }
  EXPECT_THAT(Names("C:\\d\\", fileattr::Files),
              ElementsAre(".hidden", "B2.txt", "b.txt", "\xC3\xA9.txt"));
  EXPECT_THAT(Names("c:\\D", fileattr::Directory),
              ElementsAre("B2.txt", "+Z", "+a", "b.txt", "\xC3\xA9.txt"));
  EXPECT_EQ(m_leftOut.Summary(), "Left out: 1 hidden folder.");
  EXPECT_THAT(Names("C:\\d", fileattr::Directory | fileattr::Hidden),
              ElementsAre("+.git", ".hidden", "B2.txt", "+Z", "+a", "b.txt", "\xC3\xA9.txt"));
}

TEST_F(clsDirSearchTest, LeavesOutAndCountsWhatWindowsWouldNotGive) {
  m_sample.MakeFolder("C:\\d\\real");
  m_sample.WriteFile("C:\\d\\readme", "1");
  m_sample.WriteFile("C:\\d\\README", "22");
  for (const char* name : {"\xC3\xA9t\xC3\xA9", "\xC3\x89T\xC3\x89", "a:b"})
    m_sample.WriteFile("C:\\d\\" + std::string(name), "");
  m_sample.WriteFile("C:\\d\\caf\xE9", "333");
  Link("real", "C:\\d\\folder-link");
  Link("gone", "C:\\d\\dangling");
  Link("readme", "C:\\d\\file-link");
  ASSERT_EQ(mkfifo(m_sample.HostPath("C:\\d\\fifo").c_str(), 0600), 0);

  EXPECT_THAT(Names("C:\\d", fileattr::Files),
              ElementsAre("README", "caf\xEF\x9F\xA9", "file-link", "\xC3\x89T\xC3\x89"));
  EXPECT_EQ(m_leftOut.Summary(),
            "Left out: 2 names that differ from others only in case, 1 name that Windows can't "
            "have, 2 symbolic links.");

  // A path that a search gave leads back to the same file.
  const std::pair<const char*, unsigned> lengths[] = {
      {"README", 2}, {"caf\xEF\x9F\xA9", 3}, {"file-link", 1}};
  for (const auto& [name, length] : lengths)
    EXPECT_EQ(m_machine->Details(std::string("C:\\d\\") + name).Length, length) << name;
}

TEST_F(clsDirSearchTest, GivesDetailsOfTheItemGivenLast) {
  m_sample.WriteFile("C:\\d\\one", "1");
  std::filesystem::resize_file(m_sample.HostPath("C:\\d\\one"), (std::uint64_t{5} << 30) + 1);
  m_sample.SetTime("C:\\d\\one", 1000000007);
  m_sample.WriteFile("C:\\d\\two", "");
  clsDirSearch search = m_machine->Dir("C:\\d", fileattr::Files);
  std::string name;
  ASSERT_TRUE(search.Next(name));
  EXPECT_EQ(search.Details().LastWritten, 1000000007);
  EXPECT_EQ(search.Details().Length, (std::uint64_t{5} << 30) + 1);
  EXPECT_EQ(search.HostPath(), m_sample.HostPath("C:\\d\\one"));
  ASSERT_TRUE(search.Next(name));
  m_sample.Remove("C:\\d\\two");
  EXPECT_TRUE(
      test::Raises(errnum::PathFileAccess, "C:\\d\\two (No such file", [&] { search.Details(); }));
  EXPECT_FALSE(search.Next(name));
}

TEST_F(clsDirSearchTest, EntersNoFolderThatIsStoredAsHiddenOrSystem) {
  m_sample.MakeFolder("C:\\d\\plain");
  for (const char* value : {"0x2", "0x4"}) {
    const std::string folder = std::string("C:\\d\\") + value;
    m_sample.MakeFolder(folder);
    if (setxattr(m_sample.HostPath(folder).c_str(), "user.DOSATTRIB", value, 3, 0) != 0) {
      GTEST_SKIP() << "no extended attributes in the temporary folder";
    }
  }
  // Stored attributes outweigh the dot.
  m_sample.MakeFolder("C:\\d\\.shown");
  setxattr(m_sample.HostPath("C:\\d\\.shown").c_str(), "user.DOSATTRIB", "0x0", 3, 0);
  EXPECT_THAT(Names("C:\\d", fileattr::Directory), ElementsAre("+.shown", "+plain"));
  EXPECT_EQ(m_leftOut.Of(LeftOut::HiddenFolder), 2u);
}

TEST_F(clsDirSearchTest, EntersNoFileSystemOfTheKernels) {
  m_sample.MapDrive('z', "/");
  const std::vector<std::string> names = Names("Z:\\", fileattr::Directory);
  EXPECT_THAT(names, Contains("+usr"));
  for (const char* folder : {"/proc", "/sys", "/dev"}) {
    struct stat root {};
    struct stat status {};
    if (stat("/", &root) != 0 || stat(folder, &status) != 0 || root.st_dev == status.st_dev)
      continue;
    EXPECT_THAT(names, Not(Contains(std::string("+") + (folder + 1)))) << folder;
    EXPECT_GT(m_leftOut.Of(LeftOut::KernelFolder), 0u);
  }
}

TEST_F(clsDirSearchTest, SeesWhatChangedBetweenTwoSearches) {
  m_sample.WriteFile("C:\\d\\one", "");
  EXPECT_THAT(Names("C:\\d\\", fileattr::Files), ElementsAre("one"));
  EXPECT_THAT(Names("C:\\d\\", fileattr::Directory), ElementsAre("one"));
  EXPECT_THAT(Names("C:\\d\\", fileattr::Files), ElementsAre("one"));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));  // a tick of the disk's clock
  m_sample.MakeFolder("C:\\d\\two");
  EXPECT_THAT(Names("C:\\d\\", fileattr::Directory), ElementsAre("one", "+two"));
  m_sample.WriteFile("C:\\d\\three", "");
  EXPECT_THAT(Names("C:\\d\\", fileattr::Files), ElementsAre("one", "three"));
}

TEST_F(clsDirSearchTest, AnUnreadableFolderIsAnError) {
  m_sample.WriteFile("C:\\d\\file", "");
  for (const std::string folder : {"C:\\d\\file", "C:\\d\\gone\\", "Q:\\", "rubbish"}) {
    const std::string reason = folder.ends_with("file") ? "Not a directory" : "No such file";
    EXPECT_TRUE(test::Raises(errnum::BadFileName,
                             "Bad file name or number: " + folder + " (" + reason,
                             [&] { m_machine->Dir(folder, fileattr::Files); }));
  }
}

}  // namespace
}  // namespace sandrel
