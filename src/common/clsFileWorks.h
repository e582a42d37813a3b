// Whole-file and folder operations on host paths: Sandrel's own files, never what is scanned.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sandrel {

class clsFileWorks {
 public:
  /// True when a regular file stands at `path`, or a link to one.
  static bool FileExists(const std::string& path);
  static bool FolderExists(const std::string& path);
  /// What tells one file from another that takes its path; empty where there is none.
  static std::string Identity(const std::string& path);
  /// A leading "~/" as the user's home folder; any other path as it is.
  static std::string ExpandHome(const std::string& path);
  /// Why a file can't be opened for reading, in the system's words; empty when it can.
  static std::string Refusal(const std::string& path);

  /// The bytes of a file. Raises 75 when it can't be read, is a folder, or is larger than `limit`
  /// bytes.
  static std::string ReadWhole(const std::string& path,
                               std::uint64_t limit = std::uint64_t{1} << 31);

  /// Puts `content` in the place of the file at `path`, which keeps its old content until the new
  /// one is on disk; a link is followed even to a file that isn't there yet, the file's
  /// permissions and, where possible, its owner stay. Raises the number of the failure. A file that
  /// isn't written at once is a clsNewFile.
  static void ReplaceWhole(const std::string& path, std::string_view content);

  /// True when both paths lead to one file: the same file on disk, links followed; where one of
  /// them isn't there, the same place.
  static bool IsSameFile(const std::string& a, const std::string& b);

  /// Waits until the disk has a file's content. Raises the number of the failure.
  static void Sync(const std::string& path);

  /// Deletes a file; one that isn't there is no error.
  static void DeleteFile(const std::string& path);

  /// Makes the folder and those above it that are missing.
  static void MakeFolders(const std::string& path);

  /// The host path from the root on, without "." and ".." in it; `path` itself when the folder that
  /// is current has gone.
  static std::string Absolute(const std::string& path);

  /// The host path with exactly one "/" between the two.
  static std::string Join(std::string_view folder, std::string_view name);
};

}  // namespace sandrel
