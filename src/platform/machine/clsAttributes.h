// File attributes of the Windows platform, from whatever the file's own file system keeps.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace sandrel {

/// Reads attributes. Remembers for each device which extended attributes it has, so that a file
/// costs one look at most on an ordinary file system, and none where there are none.
class clsAttributes {
 public:
  /// Reads an extended attribute, as getxattr does.
  using Reader =
      std::function<ssize_t(const char* path, const char* name, void* value, std::size_t size)>;
  clsAttributes();
  explicit clsAttributes(Reader reader);

  /// The attribute bits (fileattr, below 32768) of the item at the host path `path`, whose `status`
  /// is that behind its links and whose own name is `name` (empty for a drive's root). Raises
  /// nothing: an attribute that can't be read counts as not there.
  int Of(const struct stat& status, const char* path, std::string_view name);

 private:
  struct Device {
    dev_t Id;
    std::array<bool, 4> Lacks{};  // in step with the extended attributes' names
  };
  Device& DeviceOf(dev_t id);

  Reader m_reader;
  std::vector<Device> m_devices;
  std::size_t m_last = 0;
};

}  // namespace sandrel
