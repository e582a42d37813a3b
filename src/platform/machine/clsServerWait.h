// Waits until the registry files of a Wine prefix are up to date.
//
// The server of a prefix keeps the registry in memory and writes it to disk every 30 seconds and
// when it ends. Whoever reads the files while it runs waits for one of the two.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace sandrel {

class clsMachine;

class clsServerWait {
 public:
  /// What the wait asks and how it passes time.
  struct Surroundings {
    std::function<bool()> ServerRuns;
    /// A text that is another one as soon as a registry file has been written.
    std::function<std::string()> FileState;
    std::function<std::chrono::steady_clock::time_point()> Now;
    std::function<void(std::chrono::milliseconds)> Sleep;
  };

  /// For a machine, which is not kept. On an offline volume no server runs.
  explicit clsServerWait(const clsMachine& machine);
  explicit clsServerWait(Surroundings surroundings);

  /// True when a server runs, so that `Wait` would wait.
  bool IsNeeded() const;

  /// Waits until no server runs any more, until the files have been written since the start of the
  /// wait, or for 35 seconds. Calls `goOn` every 50 ms; false from it cancels the wait. Gives false
  /// when it was cancelled.
  bool Wait(const std::function<bool()>& goOn) const;

 private:
  Surroundings m_surroundings;
};

}  // namespace sandrel
