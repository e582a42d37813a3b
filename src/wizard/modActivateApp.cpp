#include "wizard/modActivateApp.h"

#include <string>

#include "common/text.h"

namespace sandrel::modActivateApp {
namespace {

bool Agrees(std::string_view text, std::string_view sought, MatchBy matchBy) {
  switch (matchBy) {
    case MatchBy::Begins:
      return text.starts_with(sought);
    case MatchBy::Holds:
      return text.find(sought) != std::string_view::npos;
    case MatchBy::Equals:
      return text == sought;
    case MatchBy::Ends:
      return text.ends_with(sought);
  }
  return false;
}

}  // namespace

WindowHandle FindAppWindow(const clsWindowList& windows, std::string_view title, MatchBy matchBy,
                           bool caseSensitive, bool visibleOnly) {
  const std::string sought = caseSensitive ? std::string(title) : text::Upper(title);
  WindowHandle found = 0;
  windows.EnumWindows([&](WindowHandle window) {
    // The answer is not used: a program that hides in the tray is to be found as well.
    if (visibleOnly) windows.IsWindowVisible(window);
    std::string text = windows.GetWindowText(window);
    if (text.empty()) return true;
    if (!caseSensitive) text = text::Upper(text);
    if (Agrees(text, sought, matchBy)) found = window;
    return found == 0;
  });
  return found;
}

WindowHandle ActivateApp(clsWindowList& windows, std::string_view title, MatchBy matchBy,
                         bool caseSensitive, bool visibleOnly) {
  const WindowHandle window = FindAppWindow(windows, title, matchBy, caseSensitive, visibleOnly);
  if (window == 0) return 0;
  if (windows.IsIconic(window)) windows.ShowWindow(window, SwRestore);
  windows.SetForegroundWindow(window);
  return window;
}

}  // namespace sandrel::modActivateApp
