// Keys and values held in memory, in the order in which they were added.
//
// A tree never frees a key before its own end, so that whoever reads one keeps a valid pointer when
// it is deleted meanwhile.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/clsNameIndex.h"

namespace sandrel {

class clsKeyTree {
 public:
  struct Value {
    std::string name;
    std::uint32_t type = 0;
    std::string data;  ///< bytes as Windows holds them
  };

  struct Key {
    std::string name;
    Key* parent = nullptr;
    std::vector<Key*> subkeys;
    std::vector<Value> values;
    std::int64_t modified = 0;               ///< 100 ns units since 1601, UTC
    std::unique_ptr<std::string> className;  ///< UTF-16 little endian; null when it has none
    bool link = false;                       ///< a symbolic link, its target in a value
    clsNameIndex subkeyIndex;
    clsNameIndex valueIndex;
  };

  clsKeyTree();

  Key* Root() { return &m_keys.front(); }

  /// The subkey or value of that name; null when there is none.
  static Key* FindSubkey(Key& key, std::string_view name);
  static Value* FindValue(Key& key, std::string_view name);

  /// The key `path` (parts joined by "\") below `key`, null when it doesn't exist; the empty path
  /// is `key` itself.
  static Key* FindKey(Key* key, std::string_view path);

  /// Adds without looking for one of the same name.
  Key* AddSubkey(Key& parent, std::string_view name);
  static Value& AddValue(Key& key, std::string name);

  static void DeleteValue(Key& key, const Value& value);
  /// Takes the key, which must not be the root, out of its parent.
  static void DeleteKey(Key& key);

 private:
  std::deque<Key> m_keys;  // the first is the root
};

}  // namespace sandrel
