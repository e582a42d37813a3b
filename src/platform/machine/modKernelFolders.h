// File systems that hold the running kernel's state, not files.
#pragma once

#include <sys/types.h>

#include <string>

namespace sandrel {

/// True when the folder at the host path `path`, on the device `device`, is of such a file system:
/// proc, sysfs, the device tree, control groups and the like. False when that can't be found out.
bool IsKernelFolder(const std::string& path, dev_t device);

}  // namespace sandrel
