// An INI file, whole.
#include "Fuzz.h"
#include "common/clsIniReader.h"
#include "common/text.h"

using namespace sandrel;
using namespace sandrel::test;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static InputFile input;
  static clsIniReader reader;
  const std::string& path = input.Hold(Text(data, size));
  const clsIniReader::Lines sections = reader.ListSections(path);
  for (const std::string_view section : sections) {
    for (const std::string_view entry : reader.ListEntries(path, section)) {
      Need(!entry.empty() && entry.find_first_of("\r\n") == std::string_view::npos);
    }
  }
  return 0;
}
