#include "cli/modPrintHelper.h"

#include <chrono>

#include "common/clsError.h"
#include "common/modInstallation.h"
#include "platform/process/clsProcess.h"

namespace sandrel {
int RunPrintHelper(const std::string& analysis, const std::string& out, const std::string& page) {
  const std::string helper = HelperProgram("sandrel-print");
  clsProcess process = clsProcess::Start({{helper, analysis, out, page}, {}});
  if (process.IsNull()) throw ErrnoError(process.StartError(), "Can't start " + helper);
  process.Wait(std::chrono::milliseconds(-1), [] { return true; });
  return process.ExitStatus();
}

}  // namespace sandrel
