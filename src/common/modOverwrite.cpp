#include "common/modOverwrite.h"

#include <fmt/format.h>

#include <filesystem>

#include "common/clsFileWorks.h"

namespace sandrel {

std::string OverwriteText(std::string_view name) {
  return fmt::format(
      "WARNING! An existing file by that name ({}) has been found!\n\nOverwrite the existing file?",
      name);
}

bool MayOverwrite(clsShell& shell, const std::string& path) {
  return !clsFileWorks::FileExists(path) ||
         shell.Ask({OverwriteText(std::filesystem::path(path).filename().string()),
                    "Confirmation Required", Buttons::YesNo, BoxIcon::Exclamation}) == Answer::Yes;
}

}  // namespace sandrel
