#include "common/clsFileWorks.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "common/clsNewFile.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

using testing::HasSubstr;

std::size_t FilesIn(const std::string& folder) {
  const std::filesystem::directory_iterator items(folder);
  return static_cast<std::size_t>(std::distance(begin(items), end(items)));
}

TEST(clsFileWorks, ReplacesAFileWholeAndKeepsItsPlace) {
  TempFolder folder;
  const std::string path = folder.Of("settings.ini");
  clsFileWorks::ReplaceWhole(path, "one");
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(path.c_str(), 4321, 4321), 0);
  }
  const std::string large(3 << 20, 'x');
  clsFileWorks::ReplaceWhole(path, large);
  EXPECT_EQ(clsFileWorks::ReadWhole(path), large);
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777u, 0640u);
  EXPECT_EQ(status.st_uid, geteuid() == 0 ? 4321u : geteuid());
  EXPECT_EQ(FilesIn(folder.Path()), 1u);

  // Links, one after the other, to a file that isn't there yet.
  std::filesystem::create_directory(folder.Of("below"));
  std::filesystem::create_symlink("below/second", folder.Of("first"));
  std::filesystem::create_symlink("../new", folder.Of("below/second"));
  clsFileWorks::ReplaceWhole(folder.Of("first"), "made");
  EXPECT_EQ(clsFileWorks::ReadWhole(folder.Of("new")), "made");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Of("below/second")));
}

TEST(clsFileWorks, LeavesEverythingAsItWasWhenItFails) {
  TempFolder folder;
  const std::string path = folder.Of("kept");
  clsFileWorks::ReplaceWhole(path, "old");
  EXPECT_NE(NumberOf([&] { clsFileWorks::ReplaceWhole(path + "/below", "new"); }), 0);
  EXPECT_EQ(NumberOf([&] { clsFileWorks::ReplaceWhole(folder.Of("no/such"), "new"); }),
            errnum::FileNotFound);
  std::filesystem::create_directory(folder.Of("folder"));
  ASSERT_EQ(mkfifo(folder.Of("folder/fifo").c_str(), 0600), 0);
  for (const char* name : {"folder", "folder/fifo"}) {
    EXPECT_EQ(NumberOf([&] { clsFileWorks::ReplaceWhole(folder.Of(name), "new"); }),
              errnum::PathFileAccess);
  }
  for (const char* target : {"circle", "no/such"}) {
    const std::string link = folder.Of("circle");
    std::filesystem::create_symlink(target, link);
    EXPECT_NE(NumberOf([&] { clsFileWorks::ReplaceWhole(link, "new"); }), 0) << target;
    EXPECT_EQ(std::filesystem::read_symlink(link), target);
    std::filesystem::remove(link);
  }
  EXPECT_EQ(clsFileWorks::ReadWhole(path), "old");
  EXPECT_EQ(FilesIn(folder.Path()), 2u);  // no temporary file stays behind
  EXPECT_EQ(FilesIn(folder.Of("folder")), 1u);
}

TEST(clsNewFile, TakesItsPlaceWholeOrNotAtAll) {
  TempFolder folder;
  // As long as a name can be: what stands beside must find room too.
  const std::string path = folder.Of(std::string(255, 'n'));
  clsFileWorks::ReplaceWhole(path, "old");
  {
    clsNewFile given(path);
    EXPECT_EQ(NumberOf([&] { clsNewFile second(path); }), errnum::PathFileAccess);
    std::ofstream(given.Path()) << "half";
  }
  EXPECT_EQ(FilesIn(folder.Path()), 1u);

  const pid_t child = fork();
  if (child == 0) {  // killed in the middle
    clsNewFile cut(path);
    std::ofstream(cut.Path()) << "half of a longer text";
    std::ofstream(cut.Path() + "-journal") << "half";
    _exit(0);
  }
  waitpid(child, nullptr, 0);
  EXPECT_EQ(clsFileWorks::ReadWhole(path), "old");
  EXPECT_EQ(FilesIn(folder.Path()), 3u);
  clsNewFile whole(path);
  EXPECT_EQ(clsFileWorks::ReadWhole(whole.Path()), "");
  std::ofstream(whole.Path()) << "new";
  whole.Commit();
  EXPECT_EQ(clsFileWorks::ReadWhole(path), "new");
  EXPECT_EQ(FilesIn(folder.Path()), 1u);
}

TEST(clsFileWorks, ReadsRegularFilesOnly) {
  TempFolder folder;
  clsFileWorks::ReplaceWhole(folder.Of("file"), "12345");
  ASSERT_EQ(mkfifo(folder.Of("fifo").c_str(), 0600), 0);
  EXPECT_EQ(clsFileWorks::ReadWhole(folder.Of("file"), 5), "12345");
  for (const std::string& path : {folder.Of("missing"), folder.Of("fifo"), folder.Path()}) {
    EXPECT_EQ(NumberOf([&] { clsFileWorks::ReadWhole(path); }), errnum::PathFileAccess) << path;
  }
  EXPECT_EQ(NumberOf([&] { clsFileWorks::ReadWhole(folder.Of("file"), 4); }),
            errnum::PathFileAccess);
  // A file that tells no size is read to its end.
  EXPECT_THAT(clsFileWorks::ReadWhole("/proc/self/status"), HasSubstr("Name:"));
  EXPECT_TRUE(clsFileWorks::FileExists(folder.Of("file")));
  EXPECT_FALSE(clsFileWorks::FileExists(folder.Of("fifo")));
  EXPECT_FALSE(clsFileWorks::FolderExists(folder.Of("file")));
}

TEST(clsFileWorks, MakesAndDeletes) {
  TempFolder folder;
  for (int i = 0; i < 2; ++i) clsFileWorks::MakeFolders(folder.Of("a/b"));
  clsFileWorks::ReplaceWhole(folder.Of("a/file"), "");
  EXPECT_NE(NumberOf([&] { clsFileWorks::MakeFolders(folder.Of("a/file/d")); }), 0);
  for (int i = 0; i < 2; ++i) clsFileWorks::DeleteFile(folder.Of("a/file"));
  EXPECT_NE(NumberOf([&] { clsFileWorks::DeleteFile(folder.Of("a/b")); }), 0);
  EXPECT_EQ(clsFileWorks::Join("/a/", "/b"), "/a/b");
}

}  // namespace
}  // namespace sandrel::test
