// Keeps in the settings what the next session is to find again: places, widths, recent files.
#pragma once

#include <functional>
#include <string_view>

#include "common/clsShell.h"
#include "config/clsSettings.h"

namespace sandrel {

/// Runs `save`, whose settings are written together. When they can't be, that costs what was to be
/// kept and no more: the status text tells that `what` ("The columns' layout") can't be saved.
void Keep(clsShell& shell, clsSettings& settings, std::string_view what,
          const std::function<void()>& save);

}  // namespace sandrel
