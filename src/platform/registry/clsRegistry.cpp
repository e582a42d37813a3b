#include "platform/registry/clsRegistry.h"

#include "common/text.h"
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
    m_chain.assign(1, Step{{}, std::move(top), false});
  }
  std::size_t level = 0;
  for (std::string_view rest = path; !rest.empty();) {
    const std::string_view part = keypath::CutPart(rest);
    if (level + 1 < m_chain.size() && m_chain[level + 1].name == part) {
      ++level;
      continue;
    }
    if (level == MaxKeyLevel) return regstatus::FileNotFound;
    m_chain.resize(level + 1);
    Step& above = m_chain.back();
    bool followed = false;
    int hops = MaxHops;
    Handle below = OpenSubkey(above.key, part, !above.insideLink, followed, hops);
    if (below == nullptr) return regstatus::FileNotFound;
    const bool insideLink = above.insideLink || followed;
    m_chain.push_back(Step{std::string(part), std::move(below), insideLink});
    ++level;
  }
  key = m_chain[level].key;
  key->m_level = level;
  if (level == MaxKeyLevel) CountDeepKeys(root, path, key);
  return regstatus::Success;
}

void clsRegistry::CountDeepKeys(std::uint32_t root, std::string_view path, const Handle& key) {
  if (m_deepKeysCounted.insert(std::to_string(root).append(path)).second) {
    m_leftOut.Add(LeftOut::DeepKey, key->SubkeyNames().size());
  }
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
  m_enumeratedKey = key;
  m_enumeratedIndex = index;
  return regstatus::Success;
}

std::int32_t clsRegistry::RegQueryValueEx(const Handle& key, std::string_view name,
                                          std::uint32_t& type, std::string& data) {
  if (key == nullptr) return regstatus::InvalidHandle;
  std::size_t index = m_enumeratedIndex;
  const std::vector<std::string>& names = key->ValueNames();
  if (m_enumeratedKey.lock() != key || index >= names.size() || names[index] != name) {
    index = key->FindValue(name);
  }
  if (index == clsNameIndex::None || !key->Value(index, type, data)) return regstatus::FileNotFound;
  if (IsText(type)) Terminate(data);
  return regstatus::Success;
}

void clsRegistry::ForgetOpenKeys() {
  m_chain.clear();
  m_enumeratedKey.reset();
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
