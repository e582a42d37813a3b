// Walks a machine's HKEY_LOCAL_MACHINE as a scan does, without storing anything: opens the hives,
// counts the keys, then reads every key and value.
//
//   bench_registry MACHINE

#include <fmt/format.h>

#include <string>

#include "platform/machine/clsMachine.h"

namespace {

struct Walk {
  sandrel::clsRegistry& Registry;
  std::size_t Keys = 0, Values = 0, Bytes = 0;

  void Down(const std::string& branch, bool withValues) {
    sandrel::clsRegistry::Handle key;
    if (Registry.RegOpenKeyEx(sandrel::hkey::LocalMachine, branch, key) != 0) return;
    std::string name;
    std::string data;
    std::uint32_t type = 0;
    for (std::size_t i = 0; withValues && Registry.RegEnumValue(key, i, name) == 0; ++i) {
      if (Registry.RegQueryValueEx(key, name, type, data) != 0) continue;
      ++Values;
      Bytes += data.size();
    }
    for (std::size_t i = 0; Registry.RegEnumKey(key, i, name) == 0; ++i) {
      ++Keys;
      Down(branch.empty() ? name : branch + "\\" + name, withValues);
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fmt::print(stderr, "bench_registry MACHINE\n");
    return 2;
  }
  try {
    const auto machine = sandrel::clsMachine::Open(argv[1]);
    Walk walk{machine->Registry()};
    walk.Down("", false);
    walk.Down("", true);
    fmt::print("{} keys, {} values, {} bytes\n", walk.Keys / 2, walk.Values, walk.Bytes);
    return 0;
  } catch (const std::exception& error) {
    fmt::print(stderr, "bench_registry: {}\n", error.what());
    return 2;
  }
}
