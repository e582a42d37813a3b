#include "platform/machine/modMachineReport.h"

#include <fmt/format.h>

#include <memory>

#include "common/clsError.h"
#include "platform/machine/clsMachine.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {
namespace {

using Facts = std::vector<MachineFact>;

void AddDrives(const clsMachine& machine, Facts& facts) {
  for (const std::string& drive : machine.Drives()) {
    const auto path = machine.HostPath(drive + "\\");
    facts.push_back({"Drive", fmt::format("{} is {}", drive, path.value_or("not there"))});
  }
}

void AddRegistry(clsMachine& machine, Facts& facts) {
  const clsRegistry& registry = machine.Registry();
  for (const HiveFile& hive : registry.HiveFiles()) {
    facts.push_back({"Hive", fmt::format("{} is {}", hive.Key, hive.Path)});
  }
  const std::string& user = registry.CurrentUserSid();
  facts.push_back({"User", user.empty() ? "none, so that there is no HKEY_CURRENT_USER"
                                        : user + " is HKEY_CURRENT_USER"});
  for (const std::string& remark : registry.Remarks()) facts.push_back({"Note", remark});
}

}  // namespace

const char* KindText(const clsMachine& machine) {
  return machine.MachineKind() == clsMachine::Kind::WinePrefix ? "Wine prefix"
                                                               : "offline Windows volume";
}

Facts ReportMachine(const std::string& folder) {
  Facts facts;
  try {
    const std::shared_ptr<clsMachine> machine = clsMachine::Open(folder);
    facts.push_back({"Machine", fmt::format("{} ({})", machine->Folder(), KindText(*machine))});
    AddDrives(*machine, facts);
    try {
      facts.push_back({"Windows", machine->WindowsFolder()});
      AddRegistry(*machine, facts);
    } catch (const clsError& error) {
      facts.push_back({"Note", error.Description()});
    }
    if (machine->MachineKind() == clsMachine::Kind::WinePrefix &&
        PrefixServerRuns(machine->Folder())) {
      facts.push_back({"Note",
                       "Wine is running on this prefix. The last changes to its registry reach the "
                       "hives up to 30 seconds later."});
    }
  } catch (const clsError& error) {
    if (facts.empty()) {
      facts.push_back({"Machine", "none: " + error.Description()});
    } else {
      facts.push_back({"Note", error.Description()});
    }
  }
  return facts;
}

}  // namespace sandrel
