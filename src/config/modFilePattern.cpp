#include "config/modFilePattern.h"

#include <algorithm>
#include <string>

#include "common/clsError.h"
#include "common/text.h"

namespace sandrel {
namespace {

// Names as the platform counts them, in UTF-16 units.
std::u16string Units(std::string_view text) {
  const std::string bytes = text::ToUtf16Le(text);
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                     static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
  }
  return units;
}

struct Parts {
  std::u16string Base, Extension;
};

Parts SplitName(std::string_view name) {
  const std::string lower = text::Lower(name);
  const std::size_t dot = lower.find('.');
  if (dot == std::string::npos) return {Units(lower), {}};
  return {Units(lower.substr(0, dot)), Units(text::Trim(std::string_view(lower).substr(dot + 1)))};
}

// Where the pattern holds "*", both texts are cut to what stands from the place before it.
void CutAtStar(std::u16string& name, std::u16string& pattern) {
  const std::size_t star = pattern.find(u'*');
  if (star == std::u16string::npos) return;
  if (star == 0) {
    throw clsError(
        errnum::InvalidArgument,
        "Invalid procedure call or argument: the exclusions hold a pattern whose name or "
        "extension begins with '*'. Use '?' for single characters, or '*.*' for all files "
        "of a folder.");
  }
  pattern.erase(0, star - 1);
  name.erase(0, std::min(star - 1, name.size()));
}

bool Matches(std::u16string name, const std::u16string& pattern) {
  if (name.size() != pattern.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (pattern[i] == u'?') name[i] = u'?';
  }
  return name == pattern;
}

}  // namespace

bool IsPattern(std::string_view name) {
  return name.find_first_of("?*") != std::string::npos;
}

bool MatchFileName(std::string_view name, std::string_view pattern) {
  Parts names = SplitName(name);
  Parts patterns = SplitName(pattern);
  CutAtStar(names.Base, patterns.Base);
  CutAtStar(names.Extension, patterns.Extension);
  // A pattern without an extension matches names with any.
  return Matches(names.Base, patterns.Base) &&
         (patterns.Extension.empty() || Matches(names.Extension, patterns.Extension));
}

void CheckPattern(std::string_view name) {
  if (name != AllFiles && IsPattern(name)) MatchFileName("", name);
}

}  // namespace sandrel
