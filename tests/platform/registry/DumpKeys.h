// All keys and values below a key as text, one a line, for tests that compare registries.
#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "platform/registry/clsRegistry.h"

namespace sandrel::test {

/// A value's type and data in hexadecimal digits, "none" when they can't be had.
inline std::string Query(clsRegistry& registry, const clsRegistry::Handle& key,
                         std::string_view name) {
  std::uint32_t type = 0;
  std::string data;
  if (registry.RegQueryValueEx(key, name, type, data) != regstatus::Success) return "none";
  std::string out = fmt::format("{:x}:", type);
  for (const char byte : data) out += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  return out;
}

/// The same by the key's path.
inline std::string Query(clsRegistry& registry, std::uint32_t root, std::string_view path,
                         std::string_view name) {
  clsRegistry::Handle key;
  return registry.RegOpenKeyEx(root, path, key) == regstatus::Success ? Query(registry, key, name)
                                                                      : "none";
}

inline std::string DumpKeys(clsRegistry& registry, std::uint32_t root,
                            const std::string& path = {}) {
  clsRegistry::Handle key;
  std::string out = fmt::format("[{}]\n", path);
  if (registry.RegOpenKeyEx(root, path, key) != regstatus::Success) {
    return out + "can't be opened\n";
  }
  std::string name;
  for (std::size_t i = 0; registry.RegEnumValue(key, i, name) == regstatus::Success; ++i) {
    out += name + "=" + Query(registry, key, name) + "\n";
  }
  for (std::size_t i = 0; registry.RegEnumKey(key, i, name) == regstatus::Success; ++i) {
    out += DumpKeys(registry, root, path.empty() ? name : path + "\\" + name);
  }
  return out;
}

}  // namespace sandrel::test
