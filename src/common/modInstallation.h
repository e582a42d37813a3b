// Where this program and what comes with it lie: all in one folder in a build, or spread over
// bin, libexec/sandrel and share/sandrel below one folder when installed.
#pragma once

#include <string>

namespace sandrel {

/// Host path of the running program; empty when the system can't tell.
std::string ProgramPath();

/// Host path of the folder that holds the program and all that comes with it; empty when they are
/// spread over the folders of an installation, which are no place for a user's files.
std::string ProgramFolder();

/// Host path of a program that `program` starts, such as "sandrel-print". Raises
/// errnum::FileNotFound when it isn't installed.
std::string HelperProgram(const std::string& name, const std::string& program = ProgramPath());

/// Host path of a file that comes with Sandrel; where it would lie beside the program when it isn't
/// installed.
std::string DataFile(const std::string& name);

}  // namespace sandrel
