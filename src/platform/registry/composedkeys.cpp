#include "platform/registry/composedkeys.h"

#include "platform/registry/keypath.h"

namespace sandrel {

void clsFolderKey::Add(std::string name, KeyMaker make) {
  m_names.push_back(std::move(name));
  m_makers.push_back(std::move(make));
}

clsGraftedKey::clsGraftedKey(std::shared_ptr<clsRegKey> base, std::string path, KeyMaker make)
    : m_base(std::move(base)), m_path(std::move(path)), m_make(std::move(make)) {}

const std::vector<std::string>& clsGraftedKey::SubkeyNames() {
  if (m_place != clsNameIndex::None) return m_names;
  m_names = m_base->SubkeyNames();
  std::string_view rest = m_path;
  const std::string_view part = keypath::CutPart(rest);
  m_place = clsNameIndex().Find(part, m_names.size(),
                                [&](std::size_t i) -> std::string_view { return m_names[i]; });
  if (m_place == clsNameIndex::None) {
    m_place = m_names.size();
    m_names.emplace_back(part);
  }
  return m_names;
}

std::shared_ptr<clsRegKey> clsGraftedKey::Subkey(std::size_t index) {
  if (index != m_place) return m_base->Subkey(index);
  std::string_view rest = m_path;
  keypath::CutPart(rest);
  if (rest.empty()) return m_make();
  std::shared_ptr<clsRegKey> below;
  if (index < m_base->SubkeyNames().size()) below = m_base->Subkey(index);
  if (below == nullptr) below = std::make_shared<clsFolderKey>();
  return std::make_shared<clsGraftedKey>(std::move(below), std::string(rest), m_make);
}

clsMergedKey::clsMergedKey(std::shared_ptr<clsRegKey> upper, std::shared_ptr<clsRegKey> lower)
    : m_upper(std::move(upper)), m_lower(std::move(lower)) {}

void clsMergedKey::Union::Make(const std::vector<std::string>& upper,
                               const std::vector<std::string>& lower) {
  if (made) return;
  made = true;
  names = upper;
  places.reserve(upper.size() + lower.size());
  for (std::size_t i = 0; i < upper.size(); ++i) places.emplace_back(i, clsNameIndex::None);
  clsNameIndex index;
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const std::size_t place = index.Find(
        lower[i], upper.size(), [&](std::size_t at) -> std::string_view { return upper[at]; });
    if (place != clsNameIndex::None) {
      // Of two lower names that differ only in case the first one is the upper one's match.
      if (places[place].second == clsNameIndex::None) places[place].second = i;
    } else {
      names.push_back(lower[i]);
      places.emplace_back(clsNameIndex::None, i);
    }
  }
}

const std::vector<std::string>& clsMergedKey::SubkeyNames() {
  m_subkeys.Make(m_upper->SubkeyNames(), m_lower->SubkeyNames());
  return m_subkeys.names;
}

const std::vector<std::string>& clsMergedKey::ValueNames() {
  m_values.Make(m_upper->ValueNames(), m_lower->ValueNames());
  return m_values.names;
}

std::shared_ptr<clsRegKey> clsMergedKey::Subkey(std::size_t index) {
  const auto [upper, lower] = m_subkeys.places[index];
  return MergeKeys(upper == clsNameIndex::None ? nullptr : m_upper->Subkey(upper),
                   lower == clsNameIndex::None ? nullptr : m_lower->Subkey(lower));
}

bool clsMergedKey::Value(std::size_t index, std::uint32_t& type, std::string& data) {
  const auto [upper, lower] = m_values.places[index];
  return upper != clsNameIndex::None ? m_upper->Value(upper, type, data)
                                     : m_lower->Value(lower, type, data);
}

std::shared_ptr<clsRegKey> MergeKeys(std::shared_ptr<clsRegKey> upper,
                                     std::shared_ptr<clsRegKey> lower) {
  if (upper == nullptr) return lower;
  if (lower == nullptr || upper->LinkTarget() || lower->LinkTarget()) return upper;
  return std::make_shared<clsMergedKey>(std::move(upper), std::move(lower));
}

}  // namespace sandrel
