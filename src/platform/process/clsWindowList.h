// The top-level windows of the desktop, other programs' included, as the platform names them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace sandrel {

/// Names a top-level window; 0 is the null window, which every operation takes and leaves alone.
using WindowHandle = std::uint32_t;

/// The one command that ShowWindow knows: out of the minimized state, to the front.
inline constexpr int SwRestore = 9;

/// A window may go at any time. A handle that names none any more answers empty or false, and what
/// is asked of it does not happen; nothing here raises an error.
class clsWindowList {
 public:
  virtual ~clsWindowList() = default;

  /// Calls `callback` for one window after the other, from the top down, until it gives false.
  /// Windows that can't be seen are among them.
  virtual void EnumWindows(const std::function<bool(WindowHandle)>& callback) const = 0;

  /// The title, UTF-8, its first 255 UTF-16 units at most.
  virtual std::string GetWindowText(WindowHandle window) const = 0;
  /// True for a minimized window too.
  virtual bool IsWindowVisible(WindowHandle window) const = 0;
  /// True when the window is minimized.
  virtual bool IsIconic(WindowHandle window) const = 0;

  /// Shows the window and makes it the active one; commands other than SwRestore do nothing.
  virtual void ShowWindow(WindowHandle window, int command) = 0;
  /// Restores a minimized window.
  virtual void OpenIcon(WindowHandle window) = 0;
  virtual void SetForegroundWindow(WindowHandle window) = 0;
};

}  // namespace sandrel
