#include "platform/registry/clsRegistry.h"

#include <algorithm>

#include "common/text.h"
#include "platform/registry/composedkeys.h"
#include "platform/registry/keypath.h"

namespace sandrel {
namespace {

constexpr std::size_t LongestKeyName =
    299;                    // UTF-16 units that fit the callers' buffer with its zero
constexpr int MaxHops = 8;  // links on the way to one link's target

bool IsText(std::uint32_t type) {
  return type == regtype::Sz || type == regtype::ExpandSz || type == regtype::MultiSz;
}

// As on Windows, where readers rely on the zero that sloppy writers leave out.
void Terminate(std::string& data) {
  if (data.empty()) return;
  const std::size_t units = data.size() / 2;
  if (units > 0 && data[2 * units - 2] == '\0' && data[2 * units - 1] == '\0') return;
  if (data.size() % 2 != 0) data.push_back('\0');
  if (data[data.size() - 2] != '\0' || data[data.size() - 1] != '\0') data.append(2, '\0');
}

}  // namespace

std::size_t clsRegKey::FindSubkey(std::string_view name) {
  const std::vector<std::string>& names = SubkeyNames();
  // A walk asks for one subkey after the other.
  for (std::size_t i = m_subkeyFound; i < names.size() && i < m_subkeyFound + 2; ++i) {
    if (names[i] == name) return m_subkeyFound = i;
  }
  const std::size_t found = m_subkeyIndex.Find(
      name, names.size(), [&](std::size_t i) -> std::string_view { return names[i]; });
  if (found != clsNameIndex::None) m_subkeyFound = found;
  return found;
}

std::size_t clsRegKey::FindValue(std::string_view name) {
  const std::vector<std::string>& names = ValueNames();
  if (m_valueFound < names.size() && names[m_valueFound] == name) return m_valueFound;
  return m_valueIndex.Find(name, names.size(),
                           [&](std::size_t i) -> std::string_view { return names[i]; });
}

clsRegistry::Handle clsRegistry::OpenSubkey(const Handle& parent, std::string_view name,
                                            bool mayFollow, bool& followed, int& hops) {
  followed = false;
  const std::size_t index = parent->FindSubkey(name);
  if (index == clsNameIndex::None) return {};
  Handle key = parent->Subkey(index);
  if (key == nullptr) return {};
  const std::optional<std::string> target = key->LinkTarget();
  if (!target) return key;
  std::uint32_t root = 0;
  std::string_view path;
  if (!mayFollow || !keypath::ReadLinkTarget(*target, root, path)) return {};
  followed = true;
  return FindKey(root, path, hops);
}

clsRegistry::Handle clsRegistry::OpenView(std::uint32_t root) {
  constexpr const char* Classes = "Software\\Classes";
  const std::string hardware = "System\\CurrentControlSet\\Hardware Profiles\\";
  if (root == hkey::ClassesRoot) {
    return MergeKeys(FindKey(hkey::CurrentUser, Classes), FindKey(hkey::LocalMachine, Classes));
  }
  if (root != hkey::CurrentConfig) return {};
  Handle profile = FindKey(hkey::LocalMachine, hardware + "Current");
  return profile != nullptr ? profile : FindKey(hkey::LocalMachine, hardware + "0001");
}

clsRegistry::Handle clsRegistry::FindKey(std::uint32_t root, std::string_view path, int& hops) {
  if (--hops < 0) return {};
  Handle key = OpenRoot(root);
  bool followed = false;
  while (key != nullptr && !path.empty()) {
    key = OpenSubkey(key, keypath::CutPart(path), true, followed, hops);
  }
  return key;
}

clsRegistry::Handle clsRegistry::FindKey(std::uint32_t root, std::string_view path) {
  int hops = MaxHops;
  return FindKey(root, path, hops);
}

std::int32_t clsRegistry::RegOpenKeyEx(std::uint32_t root, std::string_view path, Handle& key) {
  key.reset();
  if (m_chain.empty() || m_lastRoot != root) {
    Handle top = OpenRoot(root);
    if (top == nullptr) return regstatus::FileNotFound;
    m_lastRoot = root;
    m_chain.assign(1, Step{std::move(top)});
  }
  const auto leadsHere = [&](const Step& step) {
    return (step.end == path.size() || (step.end < path.size() && path[step.end] == '\\')) &&
           path.compare(0, step.end, m_lastPath, 0, step.end) == 0;
  };
  while (m_chain.size() > 1 && !leadsHere(m_chain.back())) m_chain.pop_back();

  for (;;) {
    const Step& above = m_chain.back();
    const std::size_t start = m_chain.size() == 1 ? 0 : above.end + 1;
    if (start >= path.size()) break;
    if (m_chain.size() > MaxKeyLevel) return regstatus::FileNotFound;
    const std::size_t end = std::min(path.find('\\', start), path.size());
    bool followed = false;
    int hops = MaxHops;
    Handle below =
        OpenSubkey(above.key, path.substr(start, end - start), !above.insideLink, followed, hops);
    if (below == nullptr) return regstatus::FileNotFound;
    const bool insideLink = above.insideLink || followed;
    m_lastPath.resize(above.end);
    m_lastPath.append(path, above.end, end - above.end);
    m_chain.push_back(Step{std::move(below), end, insideLink});
  }
  key = m_chain.back().key;
  key->m_level = m_chain.size() - 1;
  return regstatus::Success;
}

KeyGaps clsRegistry::Gaps(const Handle& key) {
  if (key == nullptr) return {};
  return {key->RefusedSubkeys(), key->RefusedValues(),
          key->m_level >= MaxKeyLevel ? key->SubkeyNames().size() : 0};
}

std::int32_t clsRegistry::RegEnumKey(const Handle& key, std::size_t index, std::string& name) {
  if (key == nullptr) return regstatus::InvalidHandle;
  if (key->m_level >= MaxKeyLevel) return regstatus::NoMoreItems;
  const std::vector<std::string>& names = key->SubkeyNames();
  if (index >= names.size()) return regstatus::NoMoreItems;
  if (names[index].size() > LongestKeyName && text::Length(names[index]) > LongestKeyName) {
    return regstatus::MoreData;
  }
  name = names[index];
  return regstatus::Success;
}

std::int32_t clsRegistry::RegEnumValue(const Handle& key, std::size_t index, std::string& name) {
  if (key == nullptr) return regstatus::InvalidHandle;
  const std::vector<std::string>& names = key->ValueNames();
  if (index >= names.size()) return regstatus::NoMoreItems;
  name = names[index];
  key->m_valueFound = index;
  return regstatus::Success;
}

std::int32_t clsRegistry::RegQueryValueEx(const Handle& key, std::string_view name,
                                          std::uint32_t& type, std::string& data) {
  if (key == nullptr) return regstatus::InvalidHandle;
  const std::size_t index = key->FindValue(name);
  if (index == clsNameIndex::None || !key->Value(index, type, data)) return regstatus::FileNotFound;
  if (IsText(type)) Terminate(data);
  return regstatus::Success;
}

void clsRegistry::ForgetOpenKeys() {
  m_chain.clear();
  m_lastPath.clear();
}

void clsRegistry::FindRoots() {
  m_roots.clear();
  for (const std::uint32_t root : {hkey::ClassesRoot, hkey::CurrentUser, hkey::LocalMachine,
                                   hkey::Users, hkey::CurrentConfig}) {
    if (OpenRoot(root) != nullptr) m_roots.push_back(root);
  }
}

std::int32_t clsRegistry::RegCreateKeyEx(std::uint32_t /*root*/, std::string_view /*path*/) {
  return regstatus::AccessDenied;
}

std::int32_t clsRegistry::RegSetValueEx(std::uint32_t /*root*/, std::string_view /*path*/,
                                        std::string_view /*name*/, std::uint32_t /*type*/,
                                        std::string_view /*data*/) {
  return regstatus::AccessDenied;
}

std::int32_t clsRegistry::RegDeleteValue(std::uint32_t /*root*/, std::string_view /*path*/,
                                         std::string_view /*name*/) {
  return regstatus::AccessDenied;
}

std::int32_t clsRegistry::RegDeleteKey(std::uint32_t /*root*/, std::string_view /*path*/) {
  return regstatus::AccessDenied;
}

}  // namespace sandrel
