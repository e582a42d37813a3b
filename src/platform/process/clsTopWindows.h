// The top-level windows of an X11 display.
//
// The window manager's list of its clients is what counts as a desktop's windows. Programs that
// hide in the tray are not on it, so the root's unmapped children that have a title follow.
#pragma once

#include <memory>
#include <vector>

#include "platform/process/clsWindowList.h"

namespace sandrel {

class clsTopWindows : public clsWindowList {
 public:
  /// Connects to the display that $DISPLAY names. With none, or one that can't be reached, there
  /// are no windows.
  clsTopWindows();
  ~clsTopWindows() override;
  clsTopWindows(const clsTopWindows&) = delete;
  clsTopWindows& operator=(const clsTopWindows&) = delete;

  /// True when the display was reached.
  bool HasDisplay() const { return m_display != nullptr; }

  void EnumWindows(const std::function<bool(WindowHandle)>& callback) const override;
  std::string GetWindowText(WindowHandle window) const override;
  bool IsWindowVisible(WindowHandle window) const override;
  bool IsIconic(WindowHandle window) const override;
  void ShowWindow(WindowHandle window, int command) override;
  void OpenIcon(WindowHandle window) override;
  void SetForegroundWindow(WindowHandle window) override;

 private:
  struct Display;

  /// True where there is a display and `window` is not the null window.
  bool Reaches(WindowHandle window) const { return m_display != nullptr && window != 0; }
  std::vector<WindowHandle> Windows() const;
  bool IsManaged() const;

  std::unique_ptr<Display> m_display;
};

}  // namespace sandrel
