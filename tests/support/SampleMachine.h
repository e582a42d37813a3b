// A small Wine prefix in a temporary folder, to be looked at and changed by tests.
//
// It has C: (drive_c) with "windows/system32", "Program Files" and "users/tester/Temp", three
// registry files with the keys that a machine is asked for, and these files:
//   C:\windows\win.ini                   two sections
//   C:\windows\system32\sample.dll       version 1.2.3.4
//   C:\Program Files\Tool\readme.txt     "hello"
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "support/SampleProgram.h"
#include "support/TempFolder.h"

namespace sandrel::test {

class SampleMachine {
 public:
  SampleMachine() {
    for (const char* folder :
         {"C:\\windows\\system32", "C:\\Program Files\\Tool", "C:\\users\\tester\\Temp"}) {
      MakeFolder(folder);
    }
    std::filesystem::create_directory(m_folder.Of("dosdevices"));
    MapDrive('c', "../drive_c");
    WriteFile("C:\\windows\\win.ini", "[fonts]\r\n[Mail]\r\nMAPI=1\r\n");
    WriteProgram("C:\\windows\\system32\\sample.dll", 0x00010002, 0x00030004);
    WriteFile("C:\\Program Files\\Tool\\readme.txt", "hello");
    SetSystemReg(SystemKeys());
    SetUserReg(UserKeys());
    SetUserDefReg("[Control Panel\\\\Desktop] 1700000000\n\"WallpaperStyle\"=\"0\"\n");
  }

  /// The prefix's folder on the host.
  const std::string& Folder() const { return m_folder.Path(); }

  /// Where a path of drive C: lies on the host; taken letter by letter, so its case counts.
  std::string HostPath(std::string_view windowsPath) const {
    if (!windowsPath.starts_with("C:")) throw std::invalid_argument("only C: is a sample's drive");
    std::string result = m_folder.Of("drive_c");
    for (const char c : windowsPath.substr(2)) result += c == '\\' ? '/' : c;
    return result;
  }

  void MakeFolder(std::string_view windowsPath) {
    std::filesystem::create_directories(HostPath(windowsPath));
  }
  /// Writes a file and makes the folders above it that are missing.
  void WriteFile(std::string_view windowsPath, std::string_view content) {
    const std::filesystem::path path = HostPath(windowsPath);
    std::filesystem::create_directories(path.parent_path());
    Write(path.string(), content);
  }
  void WriteProgram(std::string_view windowsPath, std::uint32_t versionMS,
                    std::uint32_t versionLS) {
    WriteFile(windowsPath, SampleProgram(versionMS, versionLS));
  }
  /// Removes a file, or a folder with all below it.
  void Remove(std::string_view windowsPath) { std::filesystem::remove_all(HostPath(windowsPath)); }
  /// Sets the last-written time, UTC seconds.
  void SetTime(std::string_view windowsPath, std::time_t time) {
    const timespec times[2] = {{time, 0}, {time, 0}};
    if (utimensat(AT_FDCWD, HostPath(windowsPath).c_str(), times, 0) != 0) {
      throw std::runtime_error("can't set the time of " + std::string(windowsPath));
    }
  }
  /// Makes or replaces the drive `letter` (lower case), which leads to the host path `target`.
  void MapDrive(char letter, const std::string& target) {
    const std::string link = m_folder.Of("dosdevices/") + letter + ":";
    std::filesystem::remove(link);
    std::filesystem::create_symlink(target, link);
  }

  /// Replace a registry file: `keys` is what follows the file's head, in the prefix's text form,
  /// with a key's path relative to HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER or .DEFAULT.
  void SetSystemReg(std::string_view keys) {
    Write(m_folder.Of("system.reg"), Head("Machine") + std::string(keys));
  }
  void SetUserReg(std::string_view keys) {
    Write(m_folder.Of("user.reg"), Head("User\\\\" + std::string(UserSid)) + std::string(keys));
  }
  void SetUserDefReg(std::string_view keys) {
    Write(m_folder.Of("userdef.reg"), Head("User\\\\.Default") + std::string(keys));
  }
  /// The keys that a sample begins with, to be added to.
  static std::string SystemKeys() {
    return R"([Software\\Microsoft\\Windows NT\\CurrentVersion] 1700000000
"SystemRoot"="C:\\windows"

[Software\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\)" +
           std::string(UserSid) + R"(] 1700000000
"ProfileImagePath"=str(2):"C:\\users\\tester"

[System\\CurrentControlSet\\Control\\Session Manager\\Environment] 1700000000
"TEMP"=str(2):"%SystemRoot%\\temp"
"windir"=str(2):"%SystemRoot%"

)";
  }
  static std::string UserKeys() {
    return R"([Environment] 1700000000
"TEMP"=str(2):"%USERPROFILE%\\Temp"
"TMP"=str(2):"%USERPROFILE%\\Temp"

)";
  }
  static constexpr std::string_view UserSid = "S-1-5-21-0-0-0-1000";

 private:
  static std::string Head(const std::string& branch) {
    return "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\" + branch +
           "\n\n#arch=win64\n\n";
  }
  static void Write(const std::string& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush()) throw std::runtime_error("can't write " + path);
  }

  TempFolder m_folder;
};

}  // namespace sandrel::test
