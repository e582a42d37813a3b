// A started process and the wait for its end.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>

#include "platform/process/clsHostCommands.h"

namespace sandrel {

/// Owns the handle, not the process, which goes on when the object ends. What the system keeps of
/// one that ends after its object is taken away when the next one is started.
class clsProcess {
 public:
  /// Starts a command with this process' environment, folder, and standard streams. One that can't
  /// be started gives a null process; nothing is raised.
  static clsProcess Start(const HostCommand& command);

  clsProcess() = default;
  ~clsProcess();
  clsProcess(const clsProcess&) = delete;
  clsProcess& operator=(const clsProcess&) = delete;
  clsProcess(clsProcess&& other) noexcept;

  bool IsNull() const { return m_pid <= 0; }
  /// The system's number of the reason why a process is null; 0 where there was no command.
  int StartError() const { return m_startError; }

  /// Waits until the process has ended or `limit` has passed, in short waits; a negative limit is
  /// none. Between the waits `goOn` is called, whose false ends the wait. True when the process has
  /// ended; a null process has not.
  bool Wait(std::chrono::milliseconds limit, const std::function<bool()>& goOn);

  /// Exit status of a process that has ended; 128 and the signal's number when a signal ended it.
  int ExitStatus() const { return m_exitStatus; }

 private:
  bool HasEnded();

  pid_t m_pid = 0;
  int m_startError = 0;
  int m_exitStatus = 0;
  bool m_ended = false;
};

}  // namespace sandrel
