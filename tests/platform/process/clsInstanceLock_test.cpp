#include "platform/process/clsInstanceLock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/TempFolder.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

namespace fs = std::filesystem;

bool Taken(const std::string& home) {
  return clsInstanceLock(home).PrevInstance();
}

class clsInstanceLockTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"run", "tmp", "home"}) fs::create_directory(m_folder.Of(name));
  }
  fs::path OneFileIn(const std::string& name) const {
    const fs::directory_iterator files(m_folder.Of(name));
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
    return fs::directory_iterator(m_folder.Of(name))->path();
  }

  const test::TempFolder m_folder;
  const std::string m_home = m_folder.Of("home");
  const test::Variables m_variables{{"XDG_RUNTIME_DIR", m_folder.Of("run")},
                                    {"TMPDIR", m_folder.Of("tmp")}};
};

TEST_F(clsInstanceLockTest, IsHeldByOneForEachFolderWhateverItsPathIs) {
  fs::create_directory_symlink(m_home, m_folder.Of("link"));
  {
    const clsInstanceLock first(m_home);
    EXPECT_FALSE(first.PrevInstance());
    for (const char* same : {"home", "home/", "link", "link/../home/."}) {
      EXPECT_TRUE(Taken(m_folder.Of(same))) << same;
    }
    OneFileIn("run");
    const clsInstanceLock another(m_folder.Of("missing"));
    EXPECT_FALSE(another.PrevInstance());
    EXPECT_TRUE(Taken(m_folder.Of("missing/")));
  }
  EXPECT_FALSE(Taken(m_home)) << "the lock ends with its object";
}

TEST_F(clsInstanceLockTest, TakesTheTemporaryFolderForWantOfAnotherAndNeverAStrangeFile) {
  setenv("XDG_RUNTIME_DIR", m_folder.Of("missing").c_str(), 1);
  const clsInstanceLock first(m_home);
  EXPECT_TRUE(Taken(m_home));
  const fs::path file = OneFileIn("tmp");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);

  fs::rename(file, m_folder.Of("elsewhere"));
  fs::create_symlink(m_folder.Of("elsewhere"), file);  // leads to what `first` holds
  EXPECT_FALSE(Taken(m_home));
  fs::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  const clsInstanceLock withoutFile(m_home);
  EXPECT_FALSE(Taken(m_home));
}

}  // namespace
}  // namespace sandrel
