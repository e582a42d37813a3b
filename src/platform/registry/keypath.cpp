#include "platform/registry/keypath.h"

#include <algorithm>

#include "common/text.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel::keypath {

std::string_view CutPart(std::string_view& path) {
  const std::size_t end = path.find('\\');
  const std::string_view part = path.substr(0, end);
  path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
  return part;
}

bool CutPrefix(std::string_view& path, std::string_view prefix) {
  if (!text::EqualNoCase(path.substr(0, prefix.size()), prefix)) return false;
  if (path.size() > prefix.size() && path[prefix.size()] != '\\') return false;
  path.remove_prefix(std::min(path.size(), prefix.size() + 1));
  return true;
}

std::string Join(std::string_view path, std::string_view name) {
  std::string joined(path);
  if (!path.empty() && !name.empty()) joined += '\\';
  joined += name;
  return joined;
}

std::size_t Level(std::string_view path) {
  if (path.empty()) return 0;
  return static_cast<std::size_t>(std::count(path.begin(), path.end(), '\\')) + 1;
}

bool ReadLinkTarget(std::string_view target, std::uint32_t& root, std::string_view& path) {
  path = target;
  if (CutPrefix(path, "\\REGISTRY\\MACHINE")) {
    root = hkey::LocalMachine;
    return true;
  }
  root = hkey::Users;
  return CutPrefix(path, "\\REGISTRY\\USER");
}

}  // namespace sandrel::keypath
