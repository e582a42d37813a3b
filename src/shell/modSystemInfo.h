// The machine's own tool that tells about it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/registry/clsRegistry.h"

namespace sandrel {

class clsMachine;

/// The text of a registry value: a string as it stands, a 32-bit number as "&h" and the hexadecimal
/// digits of its bytes, the last one first, without a last byte of zero. Empty for a key or value
/// that isn't there, one of more than 1024 characters, and other types.
std::string GetKeyValue(clsRegistry& registry, std::uint32_t root, std::string_view keyName,
                        std::string_view valueName);

/// Where the registry says that the tool lies, a Windows path; empty when it doesn't. `fileExists`
/// is asked for a path that is only guessed.
std::string SystemInfoPath(clsRegistry& registry,
                           const std::function<bool(const std::string& path)>& fileExists);

/// Starts the tool of the machine that `openMachine` gives, and doesn't wait for it. False when
/// there is none, or nothing of that machine can be run here; nothing is raised.
bool StartSystemInfo(const std::function<std::shared_ptr<clsMachine>()>& openMachine);

}  // namespace sandrel
