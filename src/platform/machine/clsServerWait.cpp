#include "platform/machine/clsServerWait.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <thread>
#include <utility>

#include "common/clsFileWorks.h"
#include "platform/machine/clsMachine.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds Longest = std::chrono::seconds(35);
constexpr milliseconds Step(50);
// The server writes its files one after the other; it is done when they have stayed as they are.
constexpr milliseconds Quiet(250);

std::string StateOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return "none";
  return fmt::format("{} {} {}.{}", status.st_ino, status.st_size, status.st_mtim.tv_sec,
                     status.st_mtim.tv_nsec);
}

clsServerWait::Surroundings SurroundingsOf(const clsMachine& machine) {
  const std::string system = clsFileWorks::Join(machine.Folder(), "system.reg");
  const std::string user = clsFileWorks::Join(machine.Folder(), "user.reg");
  const bool prefix = machine.MachineKind() == clsMachine::Kind::WinePrefix;
  return {[prefix, folder = machine.Folder()] { return prefix && PrefixServerRuns(folder); },
          [system, user] { return StateOf(system) + ", " + StateOf(user); },
          [] { return std::chrono::steady_clock::now(); },
          [](milliseconds time) { std::this_thread::sleep_for(time); }};
}

}  // namespace

clsServerWait::clsServerWait(const clsMachine& machine) : clsServerWait(SurroundingsOf(machine)) {}
clsServerWait::clsServerWait(Surroundings surroundings) : m_surroundings(std::move(surroundings)) {}

bool clsServerWait::IsNeeded() const {
  return m_surroundings.ServerRuns();
}

bool clsServerWait::Wait(const std::function<bool()>& goOn) const {
  const auto start = m_surroundings.Now();
  const std::string before = m_surroundings.FileState();
  std::string last = before;
  auto lastChange = start;
  while (m_surroundings.ServerRuns()) {
    const auto now = m_surroundings.Now();
    if (now - start >= Longest || (last != before && now - lastChange >= Quiet)) break;
    if (!goOn()) return false;
    m_surroundings.Sleep(Step);
    std::string state = m_surroundings.FileState();
    if (state != last) {
      last = std::move(state);
      lastChange = m_surroundings.Now();
    }
  }
  return true;
}

}  // namespace sandrel
