#include "platform/registry/clsTreeKey.h"

#include <utility>

#include "common/text.h"

namespace sandrel {

std::string LinkTargetOf(std::string_view data) {
  std::string target = text::FromUtf16Le(data);
  while (!target.empty() && target.back() == '\0') target.pop_back();
  return target;
}

clsTreeKey::clsTreeKey(std::shared_ptr<clsKeyTree> tree, clsKeyTree::Key* key)
    : m_tree(std::move(tree)), m_key(key) {}

const std::vector<std::string>& clsTreeKey::SubkeyNames() {
  if (!m_subkeysRead) {
    m_subkeysRead = true;
    m_subkeys = m_key->subkeys;
    m_subkeyNames.reserve(m_subkeys.size());
    for (const clsKeyTree::Key* subkey : m_subkeys) m_subkeyNames.push_back(subkey->name);
  }
  return m_subkeyNames;
}

const std::vector<std::string>& clsTreeKey::ValueNames() {
  if (!m_valuesRead) {
    m_valuesRead = true;
    m_valueNames.reserve(m_key->values.size());
    for (const clsKeyTree::Value& value : m_key->values) m_valueNames.push_back(value.name);
  }
  return m_valueNames;
}

std::shared_ptr<clsRegKey> clsTreeKey::Subkey(std::size_t index) {
  return std::make_shared<clsTreeKey>(m_tree, m_subkeys[index]);
}

bool clsTreeKey::Value(std::size_t index, std::uint32_t& type, std::string& data) {
  const std::string& name = m_valueNames[index];
  const clsKeyTree::Value* value = index < m_key->values.size() && m_key->values[index].name == name
                                       ? &m_key->values[index]
                                       : clsKeyTree::FindValue(*m_key, name);
  if (value == nullptr) return false;
  type = value->type;
  data = value->data;
  return true;
}

std::optional<std::string> clsTreeKey::LinkTarget() {
  if (!m_key->link) return {};
  const clsKeyTree::Value* value = clsKeyTree::FindValue(*m_key, LinkValueName);
  const bool holdsTarget = value != nullptr && value->type == regtype::Link;
  return holdsTarget ? LinkTargetOf(value->data) : std::string();
}

}  // namespace sandrel
