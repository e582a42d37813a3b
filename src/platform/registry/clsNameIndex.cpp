#include "platform/registry/clsNameIndex.h"

#include "common/text.h"

namespace sandrel {
namespace {

char32_t FoldOf(std::string_view name, std::size_t& position) {
  const auto first = static_cast<unsigned char>(name[position]);
  if (first < 0x80) {
    ++position;
    return first >= 'A' && first <= 'Z' ? first + 32u : first;
  }
  const char32_t character = text::Next(name, position);
  const char32_t folded = text::Fold(character);
  return folded < 0x80 ? character : folded;
}

}  // namespace

bool clsNameIndex::SameName(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (FoldOf(a, i) != FoldOf(b, j)) return false;
  }
  return i == a.size() && j == b.size();
}

std::uint32_t clsNameIndex::HashOf(std::string_view name) {
  std::uint32_t hash = 2166136261u;
  for (std::size_t i = 0; i < name.size();) {
    hash = (hash ^ static_cast<std::uint32_t>(FoldOf(name, i))) * 16777619u;
  }
  return hash ^ hash >> 15;
}

void clsNameIndex::Table::Put(Slot slot) {
  const std::size_t mask = slots.size() - 1;
  std::size_t place = slot.hash & mask;
  while (slots[place].index != 0) place = (place + 1) & mask;
  slots[place] = slot;
}

void clsNameIndex::Table::Add(std::uint32_t hash, std::size_t index) {
  if ((indexed + 1) * 2 > slots.size()) {
    std::vector<Slot> old(slots.empty() ? 64 : slots.size() * 2);
    old.swap(slots);
    for (const Slot& slot : old) {
      if (slot.index != 0) Put(slot);
    }
  }
  Put({hash, static_cast<std::uint32_t>(index + 1)});
  ++indexed;
}

}  // namespace sandrel
