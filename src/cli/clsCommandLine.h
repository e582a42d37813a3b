// sandrel-cli: its commands and options.
#pragma once

namespace sandrel {

/// Runs the program. Gives its exit status: 0 done, 1 refused or cancelled, 2 an error, which is
/// told in one line on standard error. No error leaves it.
int RunCommandLine(int argc, char** argv);

}  // namespace sandrel
