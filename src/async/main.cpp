// AsyncStartup: what the user's next logon starts. It removes the entry that started it, that of
// the home folder in $SANDREL_HOME, and becomes the given program.
//
//   AsyncStartup PROGRAM [ARGUMENT...]
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/clsError.h"
#include "platform/process/clsRunOnce.h"

int main(int argc, char** argv) {
  constexpr int Failed = 2;
  if (argc < 2) {
    fmt::print(stderr, "Usage: AsyncStartup PROGRAM [ARGUMENT...]\n");
    return Failed;
  }
  try {
    const sandrel::clsRunOnce entries;
    const char* const home = std::getenv("SANDREL_HOME");
    entries.DeleteValue(sandrel::clsRunOnce::WizardEntry(home != nullptr ? home : ""));
  } catch (const sandrel::clsError& error) {
    // The program is to come up all the same.
    fmt::print(stderr, "AsyncStartup: {}\n", error.what());
  }
  execv(argv[1], argv + 1);
  fmt::print(stderr, "AsyncStartup: can't start {}: {}\n", argv[1], std::strerror(errno));
  return Failed;
}
