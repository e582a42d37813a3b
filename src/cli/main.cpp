#include <clocale>

#include "cli/clsCommandLine.h"

int main(int argc, char** argv) {
  // Dates follow the user's format; numbers stay as files hold them.
  std::setlocale(LC_TIME, "");
  return sandrel::RunCommandLine(argc, argv);
}
