#include "print/modBreakWords.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "common/text.h"

namespace sandrel {
namespace {

/// The first of the numbers 1 to `count` for which `test` holds, which holds for all behind it too;
/// `count` + 1 when there is none. Few tests are made when it lies near `guess`.
template <class Test>
std::size_t FirstOf(std::size_t count, std::size_t guess, Test&& test) {
  std::size_t low = 0, high = count + 1, step = 1, probe = guess;
  while (high - low > 1) {
    if (probe <= low || probe >= high) probe = low + (high - low) / 2;
    if (test(probe)) {
      high = probe;
      probe -= std::min(step, probe);
    } else {
      low = probe;
      probe += step;
    }
    step *= 2;
  }
  return high;
}

/// Appends `word` in pieces of which each, with one wide letter more, just reaches `width` inches,
/// and a blank behind each. `guess` is the usual number of characters of a piece.
void AppendBroken(std::string& result, std::string_view word, double width, clsPrintDevice& device,
                  std::size_t& guess) {
  std::vector<std::size_t> ends{0};
  for (std::size_t position = 0; position < word.size();) {
    text::Next(word, position);
    ends.push_back(position);
  }
  std::string measured;
  for (std::size_t first = 0; first + 1 < ends.size();) {
    const std::size_t left = ends.size() - 1 - first;
    const auto piece = [&](std::size_t length) {
      return word.substr(ends[first], ends[first + length] - ends[first]);
    };
    const std::size_t length = FirstOf(left, guess, [&](std::size_t characters) {
      measured.assign("W").append(piece(characters));
      return device.TextWidth(measured) >= width;
    });
    result += piece(std::min(length, left));
    if (length > left) return;
    result += ' ';
    guess = length;
    first += length;
  }
}

}  // namespace

std::string BreakWords(std::string_view text, double width, clsPrintDevice& device) {
  std::string result;
  std::size_t guess = 24;
  for (;;) {
    const std::size_t blank = text.find(' ');
    AppendBroken(result, text.substr(0, blank), width, device, guess);
    if (blank == std::string_view::npos) return result;
    result += ' ';
    text.remove_prefix(blank + 1);
  }
}

}  // namespace sandrel
