// Version resources of Windows programs and libraries (PE32 and PE32+ files).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace sandrel {

class clsVersionInfo {
 public:
  /// The size in bytes of the file's version resource; 0 when it has none, is no PE file or can't
  /// be read, why `failure` then tells in the system's words. Reads headers and the resource
  /// directory only, never the whole file.
  static std::size_t GetFileVersionInfoSize(const std::string& hostPath,
                                            std::string* failure = nullptr);

  /// Fills `buffer` with at most `size` bytes of the version resource. False on failure.
  static bool GetFileVersionInfo(const std::string& hostPath, std::size_t size,
                                 std::string& buffer);

  struct FixedFileInfo {
    std::uint32_t FileVersionMS = 0;
    std::uint32_t FileVersionLS = 0;
  };
  /// The fixed file information (sub-block "\") of a version resource. False when it holds none.
  static bool VerQueryRoot(const std::string& buffer, FixedFileInfo& info);
};

}  // namespace sandrel
