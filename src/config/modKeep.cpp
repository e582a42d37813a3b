#include "config/modKeep.h"

#include <fmt/format.h>

#include "common/clsError.h"

namespace sandrel {

void Keep(clsShell& shell, clsSettings& settings, std::string_view what,
          const std::function<void()>& save) {
  try {
    settings.Together(save);
  } catch (const clsError& error) {
    shell.SetStatusText(fmt::format("{} can't be saved. {}", what, error.Description()));
  }
}

}  // namespace sandrel
