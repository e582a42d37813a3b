#include "export/clsRegEntry.h"

#include <utility>

#include "common/text.h"

namespace sandrel {

std::int32_t GetRegEntryType(std::string_view typeText) {
  static constexpr std::pair<const char*, std::int32_t> Types[] = {
      {"binary", 3},
      {"dword", 4},
      {"string", 1},
      {"none", 0},
      {"multi_string", 7},
      {"expand_string", 2},
      {"little_endian", 4},
      {"big_endian", 5},
      {"link", 6},
      {"resource_list", 8},
      {"full_resource_descriptor", 9},
      {"resource_requirements_list", 10}};
  const std::string lower = text::Lower(typeText);
  for (const auto& [name, number] : Types) {
    if (lower == name) return number;
  }
  return 0;
}

}  // namespace sandrel
