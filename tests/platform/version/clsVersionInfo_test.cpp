#include "platform/version/clsVersionInfo.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <random>

#include "support/SampleProgram.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

using namespace std::string_view_literals;

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
    EXPECT_FALSE(clsVersionInfo::VerQueryRoot(buffer, info));
  }
}

TEST_F(clsVersionInfoTest, TakesTheVersionAmongOtherResources) {
  // Before the version's entry stand one with a name and one of another type. The root grows over
  // the second directory; that and the third move behind the data.
  const std::string plain = test::SampleProgram(3, 4);
  std::string program = plain + std::string(0x200, '\0');
  const auto put = [&](std::size_t at, std::string_view bytes) {
    program.replace(at, bytes.size(), bytes);
  };
  put(0x178 + 17, "\x04"sv);  // the section's size in the file: 0x400
  put(0x400 + 12, "\x01\0\x02\0\0\x01\0\x80\x30\0\0\x80"sv);
  put(0x400 + 24, "\x03\0\0\0\x30\0\0\x80\x10\0\0\0\0\x02\0\x80"sv);
  put(0x600, std::string_view(plain).substr(0x418, 24));
  put(0x600 + 20, "\x40\x02\0\x80"sv);
  put(0x640, std::string_view(plain).substr(0x430, 24));
  clsVersionInfo::FixedFileInfo info;
  ASSERT_TRUE(Query(Write(program), info));
  EXPECT_EQ(info.FileVersionMS, 3u);
}

TEST_F(clsVersionInfoTest, GivesNothingForOtherFiles) {
  clsVersionInfo::FixedFileInfo info;
  for (const std::string& content : {std::string(), std::string("MZ"), std::string(5000, 'x'),
                                     "MZ" + std::string(5000, '\xFF')}) {
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
