// The version resource of a program.
#include "Fuzz.h"
#include "platform/version/clsVersionInfo.h"

using namespace sandrel;
using namespace sandrel::test;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static InputFile input;
  const std::string& path = input.Hold(Text(data, size));
  std::string failure;
  std::string buffer;
  clsVersionInfo::FixedFileInfo info;
  const std::size_t found = clsVersionInfo::GetFileVersionInfoSize(path, &failure);
  if (found == 0) return 0;
  for (const std::size_t wanted : {found, found / 2}) {
    if (!clsVersionInfo::GetFileVersionInfo(path, wanted, buffer)) continue;
    Need(buffer.size() <= wanted);
    clsVersionInfo::VerQueryRoot(buffer, info);
  }
  return 0;
}
