#include "export/clsRegEntry.h"

#include <charconv>
#include <utility>

#include "common/text.h"

namespace sandrel {

clsRegEntry RegEntryOf(bool isChanged,
                       const std::function<std::string(std::string_view column)>& cell) {
  return {cell("Hive") + "\\" + cell("Branch"), cell("Value Name"),
          cell(isChanged ? "New Value" : "Value"), GetRegEntryType(cell("Value Type"))};
}

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
      {"resource_requirements_list", 10},
      {"qword", 11}};
  const std::string lower = text::Lower(typeText);
  for (const auto& [name, number] : Types) {
    if (lower == name) return number;
  }
  // Any other type stands by its number: "TYPE 0x00012345".
  constexpr std::string_view Numbered = "type 0x";
  std::uint32_t number = 0;
  if (lower.starts_with(Numbered)) {
    std::from_chars(lower.data() + Numbered.size(), lower.data() + lower.size(), number, 16);
  }
  return static_cast<std::int32_t>(number);
}

}  // namespace sandrel
