// Runs the statements of one command. The rule of every command stands here: a statement that fails
// is reported; Retry runs that statement again, Ignore goes on with the next, Abort ends the
// command.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "common/clsError.h"
#include "common/clsShell.h"

namespace sandrel {

class clsStatements {
 public:
  /// `method` names the command in the error box ("frmSandrel.CreateViews"). `advice` may add to an
  /// error's description.
  clsStatements(clsShell& shell, std::string method,
                std::function<std::string(const clsError&)> advice = {})
      : m_shell(shell), m_method(std::move(method)), m_advice(std::move(advice)) {}

  /// Runs the command's body. When the user aborts, `cleanUp` runs, then the program's window is
  /// unloaded. False when the command was aborted.
  template <class Body, class CleanUp>
  bool Command(Body&& body, CleanUp&& cleanUp) {
    try {
      body();
      return true;
    } catch (const Aborted&) {
      cleanUp();
      m_shell.Unload();
      return false;
    }
  }

  /// Runs one statement; false when it failed and the command goes on without it. An error after
  /// which the store had undone the open transaction ends the
  /// command as a cancel does, whatever the answer but Abort: what Retry would repeat is no longer
  /// all that is missing.
  template <class Statement>
  bool operator()(Statement&& statement) {
    for (;;) {
      try {
        statement();
        return true;
      } catch (const clsError& error) {
        if (!Again(error)) return false;
      }
    }
  }

 private:
  struct Aborted {};

  bool Again(const clsError& error);

  clsShell& m_shell;
  std::string m_method;
  std::function<std::string(const clsError&)> m_advice;
  bool m_lost = false;
};

}  // namespace sandrel
