#include "platform/process/clsRunOnce.h"

#include <fmt/format.h>

#include <cstdlib>

#include "common/clsFileWorks.h"
#include "common/modHash.h"

namespace sandrel {
namespace {

std::string AutostartFolder() {
  const auto variable = [](const char* name) {
    const char* const value = std::getenv(name);
    return std::string(value != nullptr ? value : "");
  };
  std::string config = variable("XDG_CONFIG_HOME");
  if (config.empty()) config = clsFileWorks::Join(variable("HOME"), ".config");
  return clsFileWorks::Join(config, "autostart");
}

// One word of an entry's command. It is quoted as a command is, then escaped as every text of such
// a file: a backslash inside the quotes is four in the file.
std::string Word(std::string_view word) {
  std::string quoted = "\"";
  for (const char c : word) {
    switch (c) {
      case '\\':
        quoted += "\\\\\\\\";
        break;
      case '"':
      case '`':
      case '$':
        quoted += "\\\\";
        quoted += c;
        break;
      case '%':
        quoted += "%%";
        break;
      case '\n':
        quoted += "\\n";
        break;
      case '\t':
        quoted += "\\t";
        break;
      case '\r':
        quoted += "\\r";
        break;
      default:
        quoted += c;
    }
  }
  return quoted + '"';
}

}  // namespace

clsRunOnce::clsRunOnce() : m_folder(AutostartFolder()) {}

std::string clsRunOnce::WizardEntry(std::string_view home) {
  return fmt::format("zqSandrel-{:016x}", StableHash(home));
}

bool clsRunOnce::HasValue(std::string_view name) const {
  return clsFileWorks::FileExists(PathOf(name));
}

std::string clsRunOnce::PathOf(std::string_view name) const {
  return clsFileWorks::Join(m_folder, fmt::format("{}.desktop", name));
}

void clsRunOnce::SetValue(std::string_view name, const std::vector<std::string>& words,
                          const std::vector<std::string>& variables) const {
  std::string command = "env";
  for (const std::string& variable : variables) command += " " + Word(variable);
  for (const std::string& word : words) command += " " + Word(word);
  clsFileWorks::MakeFolders(m_folder);
  clsFileWorks::ReplaceWhole(
      PathOf(name), fmt::format("[Desktop Entry]\nType=Application\nName=Sandrel\n"
                                "Comment=Goes on with the wizard after a restart\nExec={}\n"
                                "Terminal=false\n",
                                command));
}

void clsRunOnce::DeleteValue(std::string_view name) const {
  clsFileWorks::DeleteFile(PathOf(name));
}

}  // namespace sandrel
