// Texts kept once each and known by number, so that the rows of fifteen lists share what repeats.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sandrel {

class TextPool {
 public:
  using Id = std::uint32_t;
  static constexpr Id Empty = 0;  ///< of the empty text

  TextPool();
  TextPool(const TextPool&) = delete;
  TextPool& operator=(const TextPool&) = delete;

  /// The number of the text (UTF-8), the same for equal texts.
  Id Intern(std::string_view text);
  /// The text lives until `Clear`.
  std::string_view Text(Id id) const { return m_texts[id]; }
  /// One more than the highest number in use.
  std::size_t Count() const { return m_texts.size(); }

  /// Forgets all texts; numbers given out before mean nothing any more.
  void Clear();

 private:
  char* Room(std::size_t size);

  std::vector<std::unique_ptr<char[]>> m_blocks;
  char* m_free = nullptr;
  std::size_t m_left = 0;
  std::vector<std::string_view> m_texts;
  std::unordered_map<std::string_view, Id> m_ids;
};

}  // namespace sandrel
