#include "platform/version/clsVersionInfo.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <random>

#include "support/SampleProgram.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

class clsVersionInfoTest : public testing::Test {
 protected:
  std::string Write(const std::string& content) {
    std::string path = m_folder.Of("program.exe");
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
    return path;
  }
  // The words of the file's version; false where it has none.
  static bool Query(const std::string& path, clsVersionInfo::FixedFileInfo& info) {
    const std::size_t size = clsVersionInfo::GetFileVersionInfoSize(path);
    std::string buffer = "left over";
    const bool got = clsVersionInfo::GetFileVersionInfo(path, size, buffer);
    EXPECT_EQ(got, size != 0);
    EXPECT_EQ(buffer.size(), got ? size : 0);
    return got && clsVersionInfo::VerQueryRoot(buffer, info);
  }

  test::TempFolder m_folder;
};

TEST_F(clsVersionInfoTest, ReadsPrograms) {
  for (const bool wide : {false, true}) {
    clsVersionInfo::FixedFileInfo info;
    const std::string path = Write(test::SampleProgram(0x00050001, 0xFFFF0007, wide));
    EXPECT_EQ(clsVersionInfo::GetFileVersionInfoSize(path), 92u);
    ASSERT_TRUE(Query(path, info)) << wide;
    EXPECT_EQ(info.FileVersionMS, 0x00050001u);
    EXPECT_EQ(info.FileVersionLS, 0xFFFF0007u);
    std::string buffer;
    EXPECT_TRUE(clsVersionInfo::GetFileVersionInfo(path, 60, buffer));
    EXPECT_EQ(buffer.size(), 60u);
    EXPECT_FALSE(clsVersionInfo::VerQueryRoot(buffer, info));
  }
}

TEST_F(clsVersionInfoTest, TakesTheVersionAmongOtherResources) {
  // Before the version's entry stand one with a name and one of another type.
  std::string program = test::SampleProgram(3, 4);
  program.append(0x200, '\0');
  program[0x178 + 17] = 4;  // the section's size in the file: 0x400
  std::string root = program.substr(0x400, 16);
  root[12] = 1;
  root[14] = 2;
  root.append("\x00\x01\x00\x80\x30\x00\x00\x80", 8);
  root.append("\x03\x00\x00\x00\x30\x00\x00\x80", 8);
  root.append("\x10\x00\x00\x00\x18\x00\x00\x80", 8);
  // The root grows over the second directory, which moves behind the data.
  std::string second = program.substr(0x418, 24);
  program.replace(0x600, second.size(), second);
  program.replace(0x400, root.size(), root);
  program.replace(0x400 + 36, 4, std::string("\x00\x02\x00\x80", 4));
  std::string third = test::SampleProgram(3, 4).substr(0x430, 24);
  program.replace(0x640, third.size(), third);
  program.replace(0x600 + 20, 4, std::string("\x40\x02\x00\x80", 4));
  clsVersionInfo::FixedFileInfo info;
  ASSERT_TRUE(Query(Write(program), info));
  EXPECT_EQ(info.FileVersionMS, 3u);
}

TEST_F(clsVersionInfoTest, GivesNothingForOtherFiles) {
  clsVersionInfo::FixedFileInfo info;
  for (const std::string& content : {std::string(), std::string("MZ"), std::string(5000, 'x'),
                                     "MZ" + std::string(5000, '\xFF')}) {
    EXPECT_EQ(clsVersionInfo::GetFileVersionInfoSize(Write(content)), 0u);
    EXPECT_FALSE(Query(Write(content), info));
  }
  EXPECT_FALSE(Query(m_folder.Of("missing"), info));
  EXPECT_FALSE(Query(m_folder.Path(), info));
  ASSERT_EQ(mkfifo(m_folder.Of("fifo").c_str(), 0600), 0);
  EXPECT_FALSE(Query(m_folder.Of("fifo"), info));  // and doesn't wait for a writer
  std::string other = test::SampleProgram(1, 2);
  other[0x488] = 0;  // the signature
  EXPECT_FALSE(Query(Write(other), info));
}

TEST_F(clsVersionInfoTest, SurvivesTruncatedAndDamagedFiles) {
  clsVersionInfo::FixedFileInfo info;
  const std::string program = test::SampleProgram(0x10002, 0x30004);
  for (std::size_t size = 0; size < 0x600; size += size < 0x180 || size > 0x3F0 ? 1 : 16) {
    const bool whole = size >= 0x460 + 92;
    EXPECT_EQ(Query(Write(program.substr(0, size)), info), whole) << size;
  }
  // Every size and offset may be anything. The seed is fixed, so a failure comes again.
  std::mt19937 random(20);
  for (int i = 0; i < 3000; ++i) {
    std::string damaged = program;
    for (std::uint32_t n = random() % 4 + 1; n > 0; --n) {
      const std::size_t at = random() % 2 == 0 ? random() % 0x1C0 : 0x400 + random() % 0xC0;
      const std::uint32_t value = random() % 2 == 0 ? random() : 0xFFFFFFFFu << random() % 32;
      for (std::size_t b = 0; b < 4; ++b) damaged[at + b] = static_cast<char>(value >> 8 * b);
    }
    Query(Write(damaged), info);
  }
}

}  // namespace
}  // namespace sandrel
