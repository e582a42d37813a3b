#include "platform/process/clsHostCommands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "platform/machine/clsMachine.h"
#include "platform/process/modCommandLine.h"

namespace sandrel {
namespace {

bool IsWindowsPath(std::string_view name) {
  return name.size() > 2 && std::isalpha(static_cast<unsigned char>(name[0])) != 0 &&
         name[1] == ':' && (name[2] == '\\' || name[2] == '/');
}

bool HasExtension(std::string_view name, std::initializer_list<const char*> extensions) {
  const std::string own = clsPathText::ExtensionOf(name);
  for (const char* extension : extensions) {
    if (text::EqualNoCase(own, extension)) return true;
  }
  return false;
}

bool IsWindowsProgram(std::string_view name) {
  return HasExtension(name, {"exe", "com", "bat", "cmd", "msi"});
}

std::string FindOnPath(const std::string& name) {
  const char* const variable = std::getenv("PATH");
  std::string_view rest = variable != nullptr ? variable : "/usr/local/bin:/usr/bin:/bin";
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    std::string file = clsFileWorks::Join(rest.substr(0, end), name);
    if (end > 0 && clsFileWorks::FileExists(file) && access(file.c_str(), X_OK) == 0) return file;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return {};
}

}  // namespace

HostCommand clsHostCommands::Make(const std::string& commandLine) const {
  return Make(SplitCommandLine(commandLine,
                               [this](const std::string& name) { return Find(name).has_value(); }));
}

HostCommand clsHostCommands::Make(std::vector<std::string> words) const {
  HostCommand command;
  if (words.empty()) return command;
  if (m_machine != nullptr && m_machine->MachineKind() == clsMachine::Kind::WinePrefix) {
    command.Variables.push_back("WINEPREFIX=" + m_machine->Folder());
  }
  const std::optional<Program> program = Find(words[0]);
  const std::string& known = program ? program->Host : words[0];
  if (!IsWindowsProgram(known)) {
    if (!program) return command;
    words[0] = program->Host;
    command.Words = std::move(words);
    return command;
  }
  const std::string wine = Wine(words[0]);  // what can't be run here is told even if it isn't there
  if (!program) return command;
  command.Words = {wine};
  if (HasExtension(known, {"msi"})) {
    command.Words.insert(command.Words.end(), {"msiexec", "/i", WindowsPath(*program)});
  } else {
    command.Words.push_back(program->Given);
  }
  command.Words.insert(command.Words.end(), words.begin() + 1, words.end());
  return command;
}

void clsHostCommands::Check(const HostCommand& command, const std::string& name) {
  if (command.Words.empty()) {
    throw clsError(errnum::FileNotFound, fmt::format("There is no program {} to run.", name));
  }
  if (access(command.Words[0].c_str(), X_OK) != 0) {
    throw ErrnoError(errno, fmt::format("Can't start {}", name));
  }
}

std::optional<clsHostCommands::Program> clsHostCommands::Find(const std::string& name) const {
  if (IsWindowsPath(name)) {
    if (m_machine == nullptr || !m_machine->FileExists(name)) return std::nullopt;
    const auto host = m_machine->HostPath(name);
    return host ? std::optional<Program>({*host, name}) : std::nullopt;
  }
  if (name.find('/') == std::string::npos) return FindByName(name);
  if (!clsFileWorks::FileExists(name)) return std::nullopt;
  const std::string path = clsFileWorks::Absolute(name);
  return Program{path, path};
}

// A bare name is looked for where the platform does: in the folder that is current, on the path, in
// the machine's system folders.
std::optional<clsHostCommands::Program> clsHostCommands::FindByName(const std::string& name) const {
  if (name.empty()) return std::nullopt;
  if (IsWindowsProgram(name) && clsFileWorks::FileExists(name)) {
    const std::string path = clsFileWorks::Absolute(name);
    return Program{path, path};
  }
  if (std::string host = FindOnPath(name); !host.empty()) return Program{host, host};
  if (m_machine == nullptr) return std::nullopt;
  for (const char* folder : {R"(C:\windows\system32\)", R"(C:\windows\)"}) {
    for (const char* extension : {"", ".exe"}) {
      const std::string path = folder + name + extension;
      if (!m_machine->FileExists(path)) continue;
      if (const auto host = m_machine->HostPath(path)) return Program{*host, path};
    }
  }
  return std::nullopt;
}

std::string clsHostCommands::Wine(const std::string& program) const {
  if (m_machine == nullptr) {
    throw clsError(
        errnum::Machine,
        fmt::format("{} is a Windows program, and there is no machine to run it on.", program));
  }
  if (m_machine->MachineKind() != clsMachine::Kind::WinePrefix) {
    throw clsError(errnum::Machine,
                   fmt::format("{} is a Windows program, and nothing can be run on the offline "
                               "Windows volume in {}. Install the software on the machine itself, "
                               "then mount its volume again.",
                               program, m_machine->Folder()));
  }
  for (const char* name : {"wine", "wine64"}) {
    if (std::string wine = FindOnPath(name); !wine.empty()) return wine;
  }
  throw clsError(
      errnum::Machine,
      fmt::format("{} is a Windows program, and Wine isn't installed to run it.", program));
}

// The installer service takes a host path's slashes for options.
std::string clsHostCommands::WindowsPath(const Program& program) const {
  if (IsWindowsPath(program.Given)) return program.Given;
  if (auto path = m_machine->WindowsPath(program.Host)) return *path;
  throw clsError(errnum::Machine,
                 fmt::format("{} lies on no drive of the machine in {}. Copy it to one first.",
                             program.Host, m_machine->Folder()));
}

}  // namespace sandrel
