#include "platform/machine/clsAttributes.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <string>

#include "platform/machine/clsDirSearch.h"

namespace sandrel {
namespace {

using namespace std::string_literals;

// A file system that gives what the test says.
struct Disk {
  std::map<std::string, std::string> Values;  // by attribute; the others have the failures below
  int UserFailure = ENODATA, Failure = ENODATA;
  int Asked = 0;

  int Of(mode_t mode, const char* name = "x", dev_t device = 1) {
    struct stat status {};
    status.st_mode = mode;
    status.st_dev = device;
    return Attributes.Of(status, (std::string("/") + name).c_str(), name);
  }
  ssize_t Read(const std::string& name, void* value, std::size_t size) {
    ++Asked;
    const auto found = Values.find(name);
    if (found == Values.end()) {
      errno = name.starts_with("user.") ? UserFailure : Failure;
      return -1;
    }
    EXPECT_LE(found->second.size(), size);
    std::memcpy(value, found->second.data(), found->second.size());
    return static_cast<ssize_t>(found->second.size());
  }
  clsAttributes Attributes{[this](const char*, const char* name, void* value, std::size_t size) {
    return Read(name, value, size);
  }};
};

constexpr mode_t File = S_IFREG | 0644;
constexpr mode_t Folder = S_IFDIR | 0755;

TEST(clsAttributes, ReadsWhatAFileSystemStores) {
  constexpr mode_t Locked = S_IFREG | 0444;
  const char* dos = "user.DOSATTRIB";
  struct Case {
    const char* Name;
    std::string Value;
    mode_t Mode;
    int Expected;
  };
  const Case cases[] = {
      // A text alone is Wine's: hidden and system, the rest from the permissions.
      {dos, "0x2", File, 2 | 32},
      {dos, "0x6", Locked, 1 | 2 | 4 | 32},
      {dos, "0x0\0"s, File, 32},
      {dos, "0x2", Folder, 2 | 16},
      // With a structure behind it, or in it, all bits are stored.
      {dos, "0x22\0\0\3\0\3\0\0\0\x11\0\0\0\x22\0\0\0"s, Locked, 0x22},
      {dos, "\0\0\4\0\4\0\0\0\x51\0\0\0\x05\0\0\0\0\0\0\0"s, File, 5},
      {dos, "\0\0\5\0\5\0\0\0\x51\0\0\0\x12\x20\0\0"s, Folder, 0x2012},
      {dos, "\0\0\1\0\1\0\0\0\x03\0\0\0\x7F\0\0\0"s, File, 3},
      // What can't be understood counts as not there.
      {dos, "0xgg", File, 32},
      {dos, "hello", Locked, 33},
      {dos, "\0\0\4\0\5\0\0\0\x51\0\0\0\x05\0\0\0"s, File, 32},
      {dos, "\0\0\4\0\4\0\0\0\x51\0\0\0"s, File, 32},
      // Bits beyond 15, and those of folders and labels, don't come from the store.
      {"system.ntfs_attrib_be", "\x10\x00\x20\x26"s, File, 0x2026},
      {"system.ntfs_attrib_be", "\0\0\0\x18"s, File, 0},
      {"system.ntfs_attrib_be", "\0\0\x26"s, File, 32},
      {"system.ntfs_attrib", "\x27\x20\x00\x10"s, Folder, 0x2037},
      {"system.dos_attrib", "\x23", File, 0x23},
  };
  for (const Case& c : cases) {
    Disk disk;
    disk.Values[c.Name] = c.Value;
    EXPECT_EQ(disk.Of(c.Mode), c.Expected) << c.Name << " " << testing::PrintToString(c.Value);
  }
}

TEST(clsAttributes, TakesTheFirstOneThatIsThereElsePermissionsAndNames) {
  Disk plain;
  EXPECT_EQ(plain.Of(File), 32);
  EXPECT_EQ(plain.Of(S_IFREG | 0466), 33);
  EXPECT_EQ(plain.Of(File, ".x"), 34);
  EXPECT_EQ(plain.Of(Folder, ".x"), 18);
  EXPECT_EQ(plain.Of(S_IFDIR | 0555, ""), 17);
  Disk disk;
  disk.Values = {{"system.ntfs_attrib", "\x04\0\0\0"s}, {"system.ntfs_attrib_be", "\0\0\0\x02"s}};
  EXPECT_EQ(disk.Of(File), 2);
  disk.Values["user.DOSATTRIB"] = "0x21\0\0"s;
  EXPECT_EQ(disk.Of(File), 0x21);
}

TEST(clsAttributes, AsksADeviceNoMoreForWhatItLacks) {
  const auto asked = [](int userFailure, int systemFailure) {
    Disk disk;
    disk.UserFailure = userFailure;
    disk.Failure = systemFailure;
    disk.Of(File);
    disk.Asked = 0;
    for (int i = 0; i < 10; ++i) disk.Of(File);
    const int again = disk.Asked;
    disk.Of(File, "x", 2);
    EXPECT_EQ(disk.Asked - again, 4);  // another device is asked for all four
    return again;
  };
  EXPECT_EQ(asked(ENODATA, EOPNOTSUPP), 10);
  EXPECT_EQ(asked(EOPNOTSUPP, ENODATA), 0);
  // One unreadable file tells nothing about its device.
  EXPECT_EQ(asked(EACCES, EACCES), 40);
}

}  // namespace
}  // namespace sandrel
