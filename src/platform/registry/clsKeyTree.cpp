#include "platform/registry/clsKeyTree.h"

#include <algorithm>

#include "platform/registry/keypath.h"

namespace sandrel {

clsKeyTree::clsKeyTree() {
  m_keys.emplace_back();
}

clsKeyTree::Key* clsKeyTree::FindSubkey(Key& key, std::string_view name) {
  const std::size_t index =
      key.subkeyIndex.Find(name, key.subkeys.size(),
                           [&](std::size_t i) -> std::string_view { return key.subkeys[i]->name; });
  return index == clsNameIndex::None ? nullptr : key.subkeys[index];
}

clsKeyTree::Value* clsKeyTree::FindValue(Key& key, std::string_view name) {
  const std::size_t index =
      key.valueIndex.Find(name, key.values.size(),
                          [&](std::size_t i) -> std::string_view { return key.values[i].name; });
  return index == clsNameIndex::None ? nullptr : &key.values[index];
}

clsKeyTree::Key* clsKeyTree::FindKey(Key* key, std::string_view path) {
  while (key != nullptr && !path.empty()) key = FindSubkey(*key, keypath::CutPart(path));
  return key;
}

clsKeyTree::Key* clsKeyTree::AddSubkey(Key& parent, std::string_view name) {
  Key& key = m_keys.emplace_back();
  key.name = name;
  key.parent = &parent;
  parent.subkeys.push_back(&key);
  return &key;
}

clsKeyTree::Value& clsKeyTree::AddValue(Key& key, std::string name) {
  Value& value = key.values.emplace_back();
  value.name = std::move(name);
  return value;
}

void clsKeyTree::DeleteValue(Key& key, const Value& value) {
  key.values.erase(key.values.begin() + (&value - key.values.data()));
  key.valueIndex.Clear();
}

void clsKeyTree::DeleteKey(Key& key) {
  Key& parent = *key.parent;
  parent.subkeys.erase(std::find(parent.subkeys.begin(), parent.subkeys.end(), &key));
  parent.subkeyIndex.Clear();
}

}  // namespace sandrel
