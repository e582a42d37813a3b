// The help system, as the platform names it.
#pragma once

#include <string>
#include <string_view>

#include "platform/process/clsWindowList.h"

namespace sandrel {

/// What WinHelpA is asked for, by the platform's numbers.
namespace helpcommand {
inline constexpr int Tab = 15;          ///< the contents
inline constexpr int PartialKey = 261;  ///< the index, at the first entry that begins with the data
}  // namespace helpcommand

class clsWinHelp {
 public:
  virtual ~clsWinHelp() = default;

  /// Shows the help file at the host path `file`, in one viewer for all calls. `window` is the
  /// window that asks. What is wrong with the file is told by the viewer itself, with the answer
  /// false; so is an unknown command.
  virtual bool WinHelpA(WindowHandle window, const std::string& file, int command,
                        std::string_view data) = 0;
};

}  // namespace sandrel
