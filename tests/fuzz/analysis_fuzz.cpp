// A file that may be an analysis: every page of it read.
#include "Fuzz.h"
#include "browser/Pages.h"
#include "browser/clsPageReader.h"

using namespace sandrel;
using namespace sandrel::test;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static InputFile input;
  const clsPageReader reader(input.Hold(Text(data, size)));
  for (int page = 0; page < page::SharedPage; ++page) {
    Try([&] {
      reader.Read(
          page, [](const auto&) {}, [](const auto&, const auto&, int) {});
    });
  }
  return 0;
}
