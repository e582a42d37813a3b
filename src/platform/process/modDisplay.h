// Whether a window can be shown at all, asked before the window library ends the process over it.
#pragma once

#include <string>

namespace sandrel {

/// Empty when a window can be shown, else one sentence for the user. A window platform that
/// $QT_QPA_PLATFORM names counts as able to when it is neither X11 nor Wayland.
std::string DisplayProblem();

}  // namespace sandrel
