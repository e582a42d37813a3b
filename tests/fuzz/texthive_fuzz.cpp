// A prefix's text hive: what was read is written so that reading it again gives the same file.
#include "Fuzz.h"
#include "platform/registry/texthive.h"

using namespace sandrel;
using namespace sandrel::test;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string written;
  Try([&] { written = WriteTextHive(ReadTextHive(Text(data, size), "system.reg")); });
  if (!written.empty()) Need(WriteTextHive(ReadTextHive(written, "system.reg")) == written);
  return 0;
}
