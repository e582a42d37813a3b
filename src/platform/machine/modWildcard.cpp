#include "platform/machine/modWildcard.h"

#include <string>

#include "common/text.h"

namespace sandrel {
namespace {

std::u32string Characters(std::string_view text) {
  std::u32string characters;
  for (std::size_t at = 0; at < text.size();) {
    characters.push_back(text::Fold(text::Next(text, at)));
  }
  return characters;
}

}  // namespace

bool MatchesWildcard(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  const std::u32string given = Characters(name);
  const std::u32string wanted = Characters(pattern);
  std::size_t at = 0, next = 0;
  // Behind the last star, and where its text ends as tried so far: a later end is tried when the
  // rest doesn't fit.
  std::size_t behindStar = std::u32string::npos, starEnd = 0;
  while (at < given.size()) {
    if (next < wanted.size() && wanted[next] == U'*') {
      behindStar = ++next;
      starEnd = at;
    } else if (next < wanted.size() && (wanted[next] == U'?' || wanted[next] == given[at])) {
      ++next;
      ++at;
    } else if (behindStar != std::u32string::npos) {
      next = behindStar;
      at = ++starEnd;
    } else {
      return false;
    }
  }
  return wanted.find_first_not_of(U'*', next) == std::u32string::npos;
}

}  // namespace sandrel
