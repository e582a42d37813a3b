#include "platform/controls/TextPool.h"

#include <algorithm>
#include <cstring>

namespace sandrel {
namespace {
constexpr std::size_t BlockSize = std::size_t{1} << 18;
}

TextPool::TextPool() {
  Clear();
}

void TextPool::Clear() {
  m_ids = {};  // a cleared map would keep its buckets
  m_texts = {};
  m_blocks.clear();
  m_free = nullptr;
  m_left = 0;
  m_texts.emplace_back();
  m_ids.emplace(std::string_view(), Empty);
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

TextPool::Id TextPool::Intern(std::string_view text) {
  if (const auto found = m_ids.find(text); found != m_ids.end()) return found->second;
  char* const room = Room(text.size());
  std::memcpy(room, text.data(), text.size());
  const std::string_view kept(room, text.size());
  const Id id = static_cast<Id>(m_texts.size());
  m_texts.push_back(kept);
  m_ids.emplace(kept, id);
  return id;
}

}  // namespace sandrel
