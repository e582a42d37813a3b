// A hash that is the same in every build and at every run, for names that programs agree on.
#pragma once

#include <cstdint>
#include <string_view>

namespace sandrel {

/// FNV-1a of the bytes.
constexpr std::uint64_t StableHash(std::string_view bytes) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (const char byte : bytes) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3u;
  }
  return hash;
}

}  // namespace sandrel
