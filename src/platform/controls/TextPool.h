// Texts kept once each and known by number, so that the rows of fifteen lists share what repeats.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
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
  /// A place of the index, which is open: a text stands at its hash's place or behind it.
  struct Slot {
    std::uint32_t Hash = 0;
    Id Text = Empty;  // Empty where the place is free
  };

  char* Room(std::size_t size);
  Slot& Place(std::uint32_t hash, std::string_view text);
  void Grow();

  std::vector<std::unique_ptr<char[]>> m_blocks;
  char* m_free = nullptr;
  std::size_t m_left = 0;
  std::vector<std::string_view> m_texts;
  std::vector<Slot> m_slots;  // a power of two, at most half of them taken
};

}  // namespace sandrel
