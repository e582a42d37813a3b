// Which host command runs a program that the user names: a program of the host as it is, one of the
// machine that is looked at by Wine.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sandrel {

class clsMachine;

/// What is started on the host.
struct HostCommand {
  std::vector<std::string> Words;      ///< program and arguments; empty when there is no program
  std::vector<std::string> Variables;  ///< "NAME=text", beside the environment that is there
};

class clsHostCommands {
 public:
  /// `machine` may be null, when only programs of the host can be run; else it outlives the object.
  explicit clsHostCommands(const clsMachine* machine) : m_machine(machine) {}

  /// The command for a command line, split as Windows does, or for its words. A Windows path, a
  /// host path or a bare name may stand for the program, which is a Windows one by its extension:
  /// exe, com, bat, cmd or msi. Every command knows the prefix that is looked at. Raises
  /// errnum::Machine when a Windows program can't be run here at all: on an offline volume, or
  /// without Wine.
  HostCommand Make(const std::string& commandLine) const;
  HostCommand Make(std::vector<std::string> words) const;
  /// Raises why the command for the program `name` can't be started: 53 when there is none.
  static void Check(const HostCommand& command, const std::string& name);

 private:
  struct Program {
    std::string Host;   // its host path
    std::string Given;  // the text that Wine finds it by
  };

  std::optional<Program> Find(const std::string& name) const;
  std::optional<Program> FindByName(const std::string& name) const;
  std::string Wine(const std::string& program) const;
  std::string WindowsPath(const Program& program) const;

  const clsMachine* m_machine;
};

}  // namespace sandrel
