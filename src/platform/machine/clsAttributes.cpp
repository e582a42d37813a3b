#include "platform/machine/clsAttributes.h"

#include <sys/xattr.h>

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/machine/clsDirSearch.h"

namespace sandrel {
namespace {

constexpr int StoredBits = 0x7FFF & ~(fileattr::Directory | fileattr::Volume);

enum Source { DosAttrib, NtfsBigEndian, NtfsLittleEndian, DosByte };
constexpr std::array<const char*, 4> Names = {"user.DOSATTRIB", "system.ntfs_attrib_be",
                                              "system.ntfs_attrib", "system.dos_attrib"};

std::uint32_t Little(std::string_view bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < bytes.size() && i < 4; ++i) {
    value |= std::uint32_t{static_cast<unsigned char>(bytes[i])} << 8 * i;
  }
  return value;
}

// What the file system's own permissions and names tell.
int FromPermissions(const struct stat& status) {
  int attributes = S_ISDIR(status.st_mode) ? 0 : fileattr::Archive;
  if ((status.st_mode & S_IWUSR) == 0) attributes |= fileattr::ReadOnly;
  return attributes;
}

// user.DOSATTRIB is a hexadecimal text, "0x22", which a NUL ends when a structure follows. Where
// the text is empty, the structure tells: version (16 bits), the version again, then at a multiple
// of four from the start the flags and the attributes (32 bits each; version 1 has no flags).
//
// A text that stands alone comes from Wine, which stores hidden and system in it and keeps the rest
// in the permissions.
std::optional<int> ReadDosAttrib(std::string_view value, const struct stat& status) {
  const std::size_t end = value.find('\0');
  std::string_view hex = value.substr(0, end);
  if (hex.starts_with("0x") || hex.starts_with("0X")) {
    hex.remove_prefix(2);
    std::uint32_t bits = 0;
    const auto [stop, failure] = std::from_chars(hex.data(), hex.data() + hex.size(), bits, 16);
    if (failure != std::errc() || stop != hex.data() + hex.size()) return {};
    const bool alone = end == std::string_view::npos || end + 1 == value.size();
    return static_cast<int>(bits & StoredBits) | (alone ? FromPermissions(status) : 0);
  }
  if (!hex.empty() || value.size() < 16) return {};
  const std::uint32_t version = Little(value.substr(2, 2));
  if (version < 1 || version > 5 || version != Little(value.substr(4, 2))) return {};
  return static_cast<int>(Little(value.substr(version == 1 ? 8 : 12, 4)) & StoredBits);
}

std::optional<int> ReadSource(std::size_t source, std::string_view value,
                              const struct stat& status) {
  switch (source) {
    case DosAttrib:
      return ReadDosAttrib(value, status);
    case NtfsBigEndian:
      if (value.size() != 4) return {};
      return static_cast<int>(__builtin_bswap32(Little(value)) & StoredBits);
    case NtfsLittleEndian:
      if (value.size() != 4) return {};
      return static_cast<int>(Little(value) & StoredBits);
    default:
      return static_cast<int>(Little(value) & StoredBits);
  }
}

}  // namespace

clsAttributes::clsAttributes() : clsAttributes(getxattr) {}
clsAttributes::clsAttributes(Reader reader) : m_reader(std::move(reader)) {}

clsAttributes::Device& clsAttributes::DeviceOf(dev_t id) {
  if (m_last < m_devices.size() && m_devices[m_last].Id == id) return m_devices[m_last];
  for (m_last = 0; m_last < m_devices.size(); ++m_last) {
    if (m_devices[m_last].Id == id) return m_devices[m_last];
  }
  m_devices.push_back(Device{id});
  return m_devices.back();
}

int clsAttributes::Of(const struct stat& status, const char* path, std::string_view name) {
  const int folder = S_ISDIR(status.st_mode) ? fileattr::Directory : 0;
  Device& device = DeviceOf(status.st_dev);
  std::array<char, 256> buffer;
  for (std::size_t i = 0; i < Names.size(); ++i) {
    if (device.Lacks[i]) continue;
    const ssize_t size = m_reader(path, Names[i], buffer.data(), buffer.size());
    if (size > 0) {
      const auto attributes =
          ReadSource(i, std::string_view(buffer.data(), static_cast<std::size_t>(size)), status);
      if (attributes) return *attributes | folder;
    } else if (size < 0 && (errno == EOPNOTSUPP || (errno == ENODATA && i != DosAttrib))) {
      // The attributes of a Windows file system's driver are there for every file or for none.
      device.Lacks[i] = true;
    }
  }
  const bool hidden = name.starts_with('.');
  return FromPermissions(status) | folder | (hidden ? fileattr::Hidden : 0);
}

}  // namespace sandrel
