#include "platform/registry/clsTreeRegistry.h"

#include <chrono>

#include "common/text.h"
#include "platform/registry/keypath.h"

namespace sandrel {
namespace {

constexpr std::size_t LongestKeyName = 255;      // UTF-16 units, as on Windows
constexpr std::size_t LongestValueName = 16383;  // likewise
constexpr char32_t FirstStrayByte = 0x110000;

bool IsWritable(std::string_view name, std::size_t longest) {
  for (std::size_t i = 0; i < name.size();) {
    if (text::Next(name, i) >= FirstStrayByte) return false;
  }
  return text::Length(name) <= longest;
}

bool IsKeyPath(std::string_view path) {
  if (keypath::Level(path) > MaxKeyLevel || (!path.empty() && path.back() == '\\')) return false;
  while (!path.empty()) {
    const std::string_view part = keypath::CutPart(path);
    if (part.empty() || !IsWritable(part, LongestKeyName)) return false;
  }
  return true;
}

std::int64_t Now() {
  constexpr std::int64_t SecondsTo1970 = 11644473600;
  const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
  return SecondsTo1970 * 10000000 +
         std::chrono::duration_cast<std::chrono::nanoseconds>(since1970).count() / 100;
}

}  // namespace

void clsTreeRegistry::Touch(const Place& place) {
  place.key->modified = Now();
  ForgetOpenKeys();
  Changed(*place.tree);
}

std::int32_t clsTreeRegistry::RegCreateKeyEx(std::uint32_t root, std::string_view path) {
  if (!IsKeyPath(path)) return regstatus::InvalidParameter;
  Place place;
  const std::int32_t status = Locate(root, path, nullptr, place);
  if (status != regstatus::Success || place.missing.empty()) return status;
  for (std::string_view rest = place.missing; !rest.empty();) {
    place.key = place.tree->AddSubkey(*place.key, keypath::CutPart(rest));
  }
  Touch(place);
  return regstatus::Success;
}

std::int32_t clsTreeRegistry::RegSetValueEx(std::uint32_t root, std::string_view path,
                                            std::string_view name, std::uint32_t type,
                                            std::string_view data) {
  if (!IsKeyPath(path) || !IsWritable(name, LongestValueName)) return regstatus::InvalidParameter;
  Place place;
  const std::int32_t status = Locate(root, path, nullptr, place);
  if (status != regstatus::Success) return status;
  if (!place.missing.empty()) return regstatus::FileNotFound;
  clsKeyTree::Value* value = clsKeyTree::FindValue(*place.key, name);
  if (value == nullptr) value = &clsKeyTree::AddValue(*place.key, std::string(name));
  value->type = type;
  value->data = data;
  Touch(place);
  return regstatus::Success;
}

std::int32_t clsTreeRegistry::RegDeleteValue(std::uint32_t root, std::string_view path,
                                             std::string_view name) {
  Place place;
  const std::int32_t status = Locate(root, path, &name, place);
  if (status != regstatus::Success) return status;
  const clsKeyTree::Value* value =
      place.missing.empty() ? clsKeyTree::FindValue(*place.key, name) : nullptr;
  if (value == nullptr) return regstatus::FileNotFound;
  clsKeyTree::DeleteValue(*place.key, *value);
  Touch(place);
  return regstatus::Success;
}

std::int32_t clsTreeRegistry::RegDeleteKey(std::uint32_t root, std::string_view path) {
  Place place;
  const std::int32_t status = Locate(root, path, nullptr, place);
  if (status != regstatus::Success) return status;
  if (!place.missing.empty()) return regstatus::FileNotFound;
  if (path.empty() || place.key->parent == nullptr) return regstatus::InvalidParameter;
  if (!place.key->subkeys.empty()) return regstatus::AccessDenied;
  clsKeyTree::DeleteKey(*place.key);
  place.key = place.key->parent;
  Touch(place);
  return regstatus::Success;
}

}  // namespace sandrel
