// Key paths: names joined by "\".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sandrel::keypath {

/// Cuts the first part off a path: "a\b" gives "a" and leaves "b".
std::string_view CutPart(std::string_view& path);

/// Cuts `prefix`, a path itself, off the start of a path when it stands there, in any case.
bool CutPrefix(std::string_view& path, std::string_view prefix);

std::string Join(std::string_view path, std::string_view name);

/// The number of parts.
std::size_t Level(std::string_view path);

/// Brings the target of a symbolic link, as "\REGISTRY\MACHINE\Software", into root key and path;
/// false when it lies in no root key.
bool ReadLinkTarget(std::string_view target, std::uint32_t& root, std::string_view& path);

}  // namespace sandrel::keypath
