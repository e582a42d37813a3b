#include "platform/controls/TextPool.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

namespace sandrel {
namespace {
constexpr std::size_t BlockSize = std::size_t{1} << 18;
constexpr std::size_t FewestSlots = 1024;
}  // namespace

TextPool::TextPool() {
  Clear();
}

void TextPool::Clear() {
  m_slots = std::vector<Slot>(FewestSlots);
  m_texts = {};
  m_blocks.clear();
  m_free = nullptr;
  m_left = 0;
  m_texts.emplace_back();
}

char* TextPool::Room(std::size_t size) {
  if (size > m_left) {
    m_left = std::max(size, BlockSize);
    m_blocks.push_back(std::make_unique_for_overwrite<char[]>(m_left));
    m_free = m_blocks.back().get();
  }
  char* const room = m_free;
  m_free += size;
  m_left -= size;
  return room;
}

// The text's place, or the free one where it belongs.
TextPool::Slot& TextPool::Place(std::uint32_t hash, std::string_view text) {
  const std::size_t mask = m_slots.size() - 1;
  std::size_t at = hash & mask;
  while (m_slots[at].Text != Empty &&
         (m_slots[at].Hash != hash || m_texts[m_slots[at].Text] != text)) {
    at = (at + 1) & mask;
  }
  return m_slots[at];
}

void TextPool::Grow() {
  std::vector<Slot> wider(m_slots.size() * 2);
  const std::size_t mask = wider.size() - 1;
  for (const Slot& slot : m_slots) {
    if (slot.Text == Empty) continue;
    std::size_t at = slot.Hash & mask;
    while (wider[at].Text != Empty) at = (at + 1) & mask;
    wider[at] = slot;
  }
  m_slots = std::move(wider);
}

TextPool::Id TextPool::Intern(std::string_view text) {
  if (text.empty()) return Empty;
  if (m_texts.size() * 2 >= m_slots.size()) Grow();
  const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
  Slot& slot = Place(hash, text);
  if (slot.Text == Empty) {
    char* const room = Room(text.size());
    std::memcpy(room, text.data(), text.size());
    slot = {hash, static_cast<Id>(m_texts.size())};
    m_texts.emplace_back(room, text.size());
  }
  return slot.Text;
}

}  // namespace sandrel
