// Starts a program and waits for its end, while window messages pass.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/process/clsHostCommands.h"
#include "platform/process/clsProcess.h"

namespace sandrel {

class clsMachine;

class clsShellWorks {
 public:
  /// `machine` may be null; else it outlives the object. `goOn` lets window messages pass; its
  /// false ends every wait, and the program that was waited for goes on alone.
  clsShellWorks(const clsMachine* machine, std::function<bool()> goOn);

  /// Starts a command line and waits. `timeOutMs` of 0 waits without limit, a positive one up to a
  /// second longer than asked. With `waitForIdle` the wait is for a program that is ready for
  /// input, which nothing tells here: it ends at once. `hidden` has no meaning for programs of the
  /// host. True when the wait ended as it should; false when the time had passed or there is no
  /// such program. A Wine program's end is waited for until its registry is on disk. Raises what
  /// clsHostCommands::Make does.
  bool SyncShell(const std::string& commandLine, std::int32_t timeOutMs, bool waitForIdle,
                 bool hidden);
  bool SyncShell(const HostCommand& command, std::int32_t timeOutMs, bool waitForIdle, bool hidden);

  /// Of the last program that was waited for to its end.
  int ExitStatus() const { return m_exitStatus; }
  /// Why the last program couldn't be started, by the system's number; 0 when it was, or when there
  /// is none of its name.
  int StartError() const { return m_startError; }

 private:
  static clsProcess StartProcess(const HostCommand& command, bool hidden);

  const clsMachine* m_machine;
  std::function<bool()> m_goOn;
  int m_exitStatus = 0;
  int m_startError = 0;
};

}  // namespace sandrel
