// The message pump: lets waiting window messages through from inside long work.
#pragma once

namespace sandrel::qt {

/// Handles what waits. In tight loops, with `often`, it looks at the window system at most every
/// 15 ms and otherwise costs next to nothing.
void DoEvents(bool often);

}  // namespace sandrel::qt
