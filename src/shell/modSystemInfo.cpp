#include "shell/modSystemInfo.h"

#include <fmt/format.h>

#include "common/clsError.h"
#include "common/text.h"
#include "platform/machine/clsMachine.h"
#include "platform/process/clsHostCommands.h"
#include "platform/process/clsProcess.h"

namespace sandrel {
namespace {

constexpr std::size_t BufferSize = 1024;  // characters
constexpr const char* ToolKey = R"(SOFTWARE\Microsoft\Shared Tools\MSINFO)";
constexpr const char* ToolsKey = R"(SOFTWARE\Microsoft\Shared Tools Location)";

std::string TextOf(const std::string& data) {
  constexpr std::size_t UnitSize = 2;
  if (data.size() > BufferSize * UnitSize) return {};
  std::string value = text::FromUtf16Le(data);
  if (value.ends_with('\0')) value.pop_back();
  return value;
}

// A byte below 16 gives one digit.
std::string NumberOf(std::string data) {
  if (data.ends_with('\0')) data.pop_back();
  std::string value = "&h";
  for (auto byte = data.rbegin(); byte != data.rend(); ++byte) {
    value += fmt::format("{:X}", static_cast<unsigned char>(*byte));
  }
  return value;
}

}  // namespace

std::string GetKeyValue(clsRegistry& registry, std::uint32_t root, std::string_view keyName,
                        std::string_view valueName) {
  clsRegistry::Handle key;
  std::uint32_t type = 0;
  std::string data;
  if (registry.RegOpenKeyEx(root, keyName, key) != regstatus::Success) return {};
  if (registry.RegQueryValueEx(key, valueName, type, data) != regstatus::Success) return {};
  if (type == regtype::Sz) return TextOf(data);
  if (type == regtype::Dword && data.size() <= BufferSize) return NumberOf(std::move(data));
  return {};
}

std::string SystemInfoPath(clsRegistry& registry,
                           const std::function<bool(const std::string& path)>& fileExists) {
  std::string path = GetKeyValue(registry, hkey::LocalMachine, ToolKey, "PATH");
  if (!path.empty()) return path;
  const std::string folder = GetKeyValue(registry, hkey::LocalMachine, ToolsKey, "MSINFO");
  if (folder.empty()) return {};
  path = folder + "\\MSINFO32.EXE";
  return fileExists(path) ? path : std::string();
}

bool StartSystemInfo(const std::function<std::shared_ptr<clsMachine>()>& openMachine) {
  try {
    const std::shared_ptr<clsMachine> machine = openMachine();
    const std::string path = SystemInfoPath(
        machine->Registry(), [&](const std::string& file) { return machine->FileExists(file); });
    if (path.empty()) return false;
    return !clsProcess::Start(clsHostCommands(machine.get()).Make(path)).IsNull();
  } catch (const clsError&) {
    return false;
  }
}

}  // namespace sandrel
