// Finds the place of a name in a list of key or value names.
//
// Names compare without regard to case, yet an exact name wins over one that differs in case: hives
// that were not written by Windows can hold both. Letters outside ASCII never equal ASCII ones, as
// on Windows (the dotless i is no i).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace sandrel {

class clsNameIndex {
 public:
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  /// True when both are the same name but for case.
  static bool SameName(std::string_view a, std::string_view b);

  /// The index of `name` among the `count` names that `nameOf(index)` gives, `None` when it isn't
  /// there. Names may be appended between two calls; after any other change call `Clear`. Costs one
  /// step however long the list is, but for the first search in a long one.
  template <class NameOf>
  std::size_t Find(std::string_view name, std::size_t count, const NameOf& nameOf) {
    std::size_t found = None;
    if (count <= FewNames) {
      for (std::size_t i = 0; i < count; ++i) {
        const std::string_view candidate = nameOf(i);
        if (candidate == name) return i;
        if (found == None && SameName(candidate, name)) found = i;
      }
      return found;
    }
    if (m_table == nullptr) m_table = std::make_unique<Table>();
    for (std::size_t i = m_table->indexed; i < count; ++i) m_table->Add(HashOf(nameOf(i)), i);
    const std::uint32_t hash = HashOf(name);
    const std::size_t mask = m_table->slots.size() - 1;
    for (std::size_t slot = hash & mask; m_table->slots[slot].index != 0;
         slot = (slot + 1) & mask) {
      if (m_table->slots[slot].hash != hash) continue;
      const std::size_t index = m_table->slots[slot].index - 1;
      const std::string_view candidate = nameOf(index);
      if (candidate == name) return index;
      if (index < found && SameName(candidate, name)) found = index;
    }
    return found;
  }

  void Clear() { m_table.reset(); }

 private:
  static constexpr std::size_t FewNames = 8;  // up to here looking at each is cheaper than a table

  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t index = 0;  // one above the name's index; 0 is an empty slot
  };
  struct Table {
    std::vector<Slot> slots;  // open addressing, a power of two, at most half full
    std::size_t indexed = 0;
    void Add(std::uint32_t hash, std::size_t index);
    void Put(Slot slot);
  };

  static std::uint32_t HashOf(std::string_view name);

  std::unique_ptr<Table> m_table;
};

}  // namespace sandrel
