#include "cli/modPrintHelper.h"

#include <chrono>
#include <filesystem>

#include "common/clsError.h"
#include "platform/process/clsProcess.h"

namespace sandrel {
namespace {

std::string FindHelper() {
  std::error_code failure;
  const auto folder = std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
  for (const auto& helper :
       {folder / "sandrel-print", folder.parent_path() / "libexec" / "sandrel" / "sandrel-print"}) {
    if (std::filesystem::exists(helper, failure)) return helper.string();
  }
  throw clsError(errnum::FileNotFound,
                 "Printing needs the program sandrel-print, which is not installed. It comes with "
                 "the desktop application.",
                 "RunPrintHelper");
}

}  // namespace

int RunPrintHelper(const std::string& analysis, const std::string& out, const std::string& page) {
  const std::string helper = FindHelper();
  clsProcess process = clsProcess::Start({{helper, analysis, out, page}, {}});
  if (process.IsNull()) throw ErrnoError(process.StartError(), "Can't start " + helper);
  process.Wait(std::chrono::milliseconds(-1), [] { return true; });
  return process.ExitStatus();
}

}  // namespace sandrel
