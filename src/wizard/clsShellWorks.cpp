#include "wizard/clsShellWorks.h"

#include <utility>

#include "platform/machine/clsMachine.h"
#include "platform/machine/clsServerWait.h"

namespace sandrel {

clsShellWorks::clsShellWorks(const clsMachine* machine, std::function<bool()> goOn)
    : m_machine(machine), m_goOn(std::move(goOn)) {}

clsProcess clsShellWorks::StartProcess(const HostCommand& command, bool /*hidden*/) {
  return clsProcess::Start(command);
}

bool clsShellWorks::SyncShell(const std::string& commandLine, std::int32_t timeOutMs,
                              bool waitForIdle, bool hidden) {
  return SyncShell(clsHostCommands(m_machine).Make(commandLine), timeOutMs, waitForIdle, hidden);
}

bool clsShellWorks::SyncShell(const HostCommand& command, std::int32_t timeOutMs, bool waitForIdle,
                              bool hidden) {
  using std::chrono::milliseconds;
  constexpr milliseconds First(1000);
  constexpr milliseconds Endless(-1);
  const milliseconds limit = timeOutMs < 1 ? Endless : milliseconds(timeOutMs);
  clsProcess process = StartProcess(command, hidden);
  m_startError = process.StartError();
  if (process.IsNull()) return false;
  if (waitForIdle) return true;
  if (!process.Wait(First, m_goOn) && !process.Wait(limit, m_goOn)) return false;
  m_exitStatus = process.ExitStatus();
  if (m_machine != nullptr) clsServerWait(*m_machine).Wait(m_goOn);
  return true;
}

}  // namespace sandrel
