// All keys and values below a key as text, one a line, for tests that compare registries.
#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "platform/registry/clsRegistry.h"

namespace sandrel::test {

inline void DumpKeys(clsRegistry& registry, std::uint32_t root, const std::string& path,
                     std::string& out) {
  clsRegistry::Handle key;
  out += fmt::format("[{}]\n", path);
  if (registry.RegOpenKeyEx(root, path, key) != regstatus::Success) {
    out += "can't be opened\n";
    return;
  }
  std::string name;
  for (std::size_t i = 0; registry.RegEnumValue(key, i, name) == regstatus::Success; ++i) {
    std::uint32_t type = 0;
    std::string data;
    if (registry.RegQueryValueEx(key, name, type, data) != regstatus::Success) out += "unreadable ";
    out += fmt::format("{}={:x}:", name, type);
    for (const char byte : data) out += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    out += '\n';
  }
  for (std::size_t i = 0; registry.RegEnumKey(key, i, name) == regstatus::Success; ++i) {
    DumpKeys(registry, root, path.empty() ? name : fmt::format("{}\\{}", path, name), out);
  }
}

inline std::string DumpKeys(clsRegistry& registry, std::uint32_t root,
                            const std::string& path = {}) {
  std::string out;
  DumpKeys(registry, root, path, out);
  return out;
}

/// The data of a value in hexadecimal digits behind its type, "none" when it can't be had.
inline std::string Query(clsRegistry& registry, std::uint32_t root, std::string_view path,
                         std::string_view name) {
  clsRegistry::Handle key;
  std::uint32_t type = 0;
  std::string data;
  if (registry.RegOpenKeyEx(root, path, key) != regstatus::Success ||
      registry.RegQueryValueEx(key, name, type, data) != regstatus::Success) {
    return "none";
  }
  std::string out = fmt::format("{:x}:", type);
  for (const char byte : data) out += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  return out;
}

}  // namespace sandrel::test
