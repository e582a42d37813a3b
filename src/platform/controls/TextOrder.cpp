#include "platform/controls/TextOrder.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "common/text.h"

namespace sandrel {
namespace {

constexpr std::size_t HeadSize = sizeof(std::uint64_t);
constexpr std::size_t Deepest = 512;  // bytes; texts that are equal up to there are compared whole

struct Folded {
  std::uint64_t Head = 0;  // the bytes to compare next, as a number
  std::string_view Text;
  TextPool::Id Id = TextPool::Empty;
};
using Place = std::vector<Folded>::iterator;

// Zeros stand behind the end: no text holds one, so a shorter text comes first.
std::uint64_t HeadOf(std::string_view text, std::size_t from) {
  std::uint64_t head = 0;
  for (std::size_t i = from; i < from + HeadSize; ++i) {
    head = head << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0u);
  }
  return head;
}

// Texts have long beginnings in common. Their next bytes are compared as one number, and what is
// equal so far is sorted on the bytes behind them.
void SortFrom(Place first, Place last, std::size_t depth) {
  if (depth >= Deepest) {
    std::sort(first, last, [](const Folded& a, const Folded& b) { return a.Text < b.Text; });
    return;
  }
  for (Place each = first; each != last; ++each) each->Head = HeadOf(each->Text, depth);
  const auto byHead = [](const Folded& a, const Folded& b) { return a.Head < b.Head; };
  if (!std::is_sorted(first, last, byHead)) std::sort(first, last, byHead);
  while (first != last) {
    const std::uint64_t head = first->Head;
    const Place end = std::find_if(first, last, [&](const Folded& it) { return it.Head != head; });
    const bool ended = (head & 0xFF) == 0;
    if (end - first > 1 && !ended) SortFrom(first, end, depth + HeadSize);
    first = end;
  }
}

}  // namespace

void RankTexts(const TextPool& texts, const std::vector<TextPool::Id>& distinct,
               std::vector<std::uint32_t>& ranks) {
  std::size_t size = 0;
  for (const TextPool::Id id : distinct) size += texts.Text(id).size();
  std::string all;
  all.reserve(size);
  std::vector<std::size_t> ends;
  ends.reserve(distinct.size());
  for (const TextPool::Id id : distinct) {
    all += text::Fold(texts.Text(id));
    ends.push_back(all.size());
  }
  std::vector<Folded> folded(distinct.size());
  std::size_t start = 0;
  for (std::size_t i = 0; i < distinct.size(); ++i) {
    folded[i] = {0, std::string_view(all).substr(start, ends[i] - start), distinct[i]};
    start = ends[i];
  }
  SortFrom(folded.begin(), folded.end(), 0);
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < folded.size(); ++i) {
    if (i > 0 && folded[i].Text != folded[i - 1].Text) ++rank;
    ranks[folded[i].Id] = rank;
  }
}

}  // namespace sandrel
