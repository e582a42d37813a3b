// A hive of Windows' own format, walked from end to end. The checksum of its head is set right, as
// nearly every input would fail on it.
#include "Fuzz.h"
#include "platform/registry/clsRegfHive.h"
#include "support/RegfBuilder.h"

using namespace sandrel;
using namespace sandrel::test;

namespace {

void Walk(const std::shared_ptr<clsRegKey>& key, std::size_t level, std::size_t& keys) {
  if (!key || level > MaxKeyLevel || ++keys > 2000) return;
  key->LinkTarget();
  std::uint32_t type = 0;
  std::string value;
  for (std::size_t i = 0; i < key->ValueNames().size(); ++i) key->Value(i, type, value);
  for (std::size_t i = 0; i < key->SubkeyNames().size(); ++i) Walk(key->Subkey(i), level + 1, keys);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static InputFile input;
  std::string hive(Text(data, size));
  if (hive.size() >= 512) RegfBuilder::SetChecksum(hive);
  Try([&] {
    std::size_t keys = 0;
    const auto opened = clsRegfHive::Open(input.Hold(hive));
    opened->HasPendingLog();
    Walk(opened->Root(), 0, keys);
  });
  return 0;
}
