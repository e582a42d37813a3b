// Finds a top-level window by its title and brings it forward.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/process/clsWindowList.h"

namespace sandrel::modActivateApp {

/// How a window's title and the search text must agree; any other number agrees with no title.
enum class MatchBy : std::int32_t { Begins = 0, Holds = 1, Equals = 2, Ends = 3 };

/// The first window, from the top down, whose title agrees with `title` (UTF-8); 0 when there is
/// none. Windows without a title never agree. `visibleOnly` leaves no window out: one that can't be
/// seen is found like any other.
WindowHandle FindAppWindow(const clsWindowList& windows, std::string_view title, MatchBy matchBy,
                           bool caseSensitive, bool visibleOnly);

/// Finds a window in the same way, restores it when it is minimized, and makes it the active one.
/// Gives its handle, or 0 when there is none and nothing happened.
WindowHandle ActivateApp(clsWindowList& windows, std::string_view title, MatchBy matchBy,
                         bool caseSensitive, bool visibleOnly);

}  // namespace sandrel::modActivateApp
