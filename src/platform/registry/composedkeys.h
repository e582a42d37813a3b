// Keys that are put together from parts of other keys.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/registry/clsNameIndex.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {

/// Gives a key, a new object at every call.
using KeyMaker = std::function<std::shared_ptr<clsRegKey>()>;

/// A key that stands in no hive and holds the roots of hives under given names.
class clsFolderKey : public clsRegKey {
 public:
  void Add(std::string name, KeyMaker make);

  const std::vector<std::string>& SubkeyNames() override { return m_names; }
  const std::vector<std::string>& ValueNames() override { return m_noNames; }
  std::shared_ptr<clsRegKey> Subkey(std::size_t index) override { return m_makers[index](); }
  bool Value(std::size_t, std::uint32_t&, std::string&) override { return false; }

 private:
  std::vector<std::string> m_names;
  std::vector<KeyMaker> m_makers;
  std::vector<std::string> m_noNames;
};

/// A key with another key put below it, in the place of what stands there.
class clsGraftedKey : public clsRegKey {
 public:
  /// `path` leads from `base` to the place of the key that `make` gives; keys missing on it are
  /// added.
  clsGraftedKey(std::shared_ptr<clsRegKey> base, std::string path, KeyMaker make);

  const std::vector<std::string>& SubkeyNames() override;
  const std::vector<std::string>& ValueNames() override { return m_base->ValueNames(); }
  std::shared_ptr<clsRegKey> Subkey(std::size_t index) override;
  bool Value(std::size_t index, std::uint32_t& type, std::string& data) override {
    return m_base->Value(index, type, data);
  }
  std::uint64_t RefusedSubkeys() override { return m_base->RefusedSubkeys(); }
  std::uint64_t RefusedValues() override { return m_base->RefusedValues(); }

 private:
  std::shared_ptr<clsRegKey> m_base;
  std::string m_path;
  KeyMaker m_make;
  std::vector<std::string> m_names;
  std::size_t m_place = clsNameIndex::None;  // of the path's first part among the names
};

/// Two keys seen as one: their subkeys united, the upper one's values before the lower one's.
class clsMergedKey : public clsRegKey {
 public:
  clsMergedKey(std::shared_ptr<clsRegKey> upper, std::shared_ptr<clsRegKey> lower);

  const std::vector<std::string>& SubkeyNames() override;
  const std::vector<std::string>& ValueNames() override;
  std::shared_ptr<clsRegKey> Subkey(std::size_t index) override;
  bool Value(std::size_t index, std::uint32_t& type, std::string& data) override;
  std::uint64_t RefusedSubkeys() override {
    return m_upper->RefusedSubkeys() + m_lower->RefusedSubkeys();
  }
  std::uint64_t RefusedValues() override {
    return m_upper->RefusedValues() + m_lower->RefusedValues();
  }

 private:
  // The union of two lists of names, each with its places in both.
  struct Union {
    bool made = false;
    std::vector<std::string> names;
    std::vector<std::pair<std::size_t, std::size_t>> places;
    void Make(const std::vector<std::string>& upper, const std::vector<std::string>& lower);
  };

  std::shared_ptr<clsRegKey> m_upper;
  std::shared_ptr<clsRegKey> m_lower;
  Union m_subkeys;
  Union m_values;
};

/// Both seen as one, or the one that isn't empty; empty when both are. Of a symbolic link and
/// another key, which can't be united before the link is followed, the upper one is seen alone.
std::shared_ptr<clsRegKey> MergeKeys(std::shared_ptr<clsRegKey> upper,
                                     std::shared_ptr<clsRegKey> lower);

}  // namespace sandrel
