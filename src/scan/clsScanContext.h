// What a scanner works with: the machine, the settings, and the way back to whoever runs it.
#pragma once

#include <functional>
#include <string>

#include "common/clsLeftOut.h"
#include "config/clsSettingsSource.h"
#include "platform/machine/clsMachine.h"

namespace sandrel {

struct clsScanContext {
  clsMachine& Machine;
  clsSettingsSource& Settings;     ///< what the scan takes
  clsLeftOut& LeftOut;             ///< what the scanner leaves out is told here
  std::string AppPath;             ///< Sandrel's own folder on the host
  std::function<void()> DoEvents;  ///< lets waiting window messages through; may call `Cancel`
};

}  // namespace sandrel
