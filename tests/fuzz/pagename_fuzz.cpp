// The name of a page as it is typed; what the refusal says commands no terminal.
#include "Fuzz.h"
#include "browser/clsPageReader.h"
#include "common/text.h"

using namespace sandrel;
using namespace sandrel::test;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string name(Text(data, size));
  try {
    PageByName(name);
  } catch (const clsError& error) {
    for (const char c : text::Escaped(error.Description())) {
      Need(static_cast<unsigned char>(c) >= ' ' && c != '\x7f');
    }
  }
  return 0;
}
