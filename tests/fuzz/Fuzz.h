// What the fuzz targets share. A target may raise nothing but the program's own errors, and says by
// `Need` what must hold for every input that was taken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "common/clsError.h"
#include "support/TempFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace sandrel::test {

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

inline void Need(bool holds) {
  if (!holds) std::abort();
}

/// Runs `body`; an error of the program's own is an answer like any other.
template <class Body>
void Try(const Body& body) {
  try {
    body();
  } catch (const clsError&) {
  }
}

/// A file that holds one input after another, for what reads a path.
class InputFile {
 public:
  const std::string& Hold(std::string_view content) {
    std::ofstream(m_path, std::ios::binary | std::ios::trunc) << content;
    return m_path;
  }

 private:
  TempFolder m_folder;
  std::string m_path = m_folder.Of("input");
};

}  // namespace sandrel::test
