// The pictures that tree and lists share, by key and number. The models name pictures here; the
// window draws them.
#pragma once

#include <array>
#include <string_view>

namespace sandrel {

/// A picture's place in this row is its number.
inline constexpr std::array<const char*, 23> ImageKeys = {"sandr",
                                                          "registry",
                                                          "closedfolder",
                                                          "ini",
                                                          "file",
                                                          "element",
                                                          "controlpanel",
                                                          "none",
                                                          "newfolder",
                                                          "changedfolder",
                                                          "deletedfolder",
                                                          "newregistry",
                                                          "changedregistry",
                                                          "deletedregistry",
                                                          "newini",
                                                          "changedini",
                                                          "deletedini",
                                                          "newelement",
                                                          "changedelement",
                                                          "deletedelement",
                                                          "newfile",
                                                          "changedfile",
                                                          "deletedfile"};

/// The number of the picture `key`, 0 to 22; -1 when there is none. Keys compare exactly.
constexpr int ImageIndex(std::string_view key) {
  for (std::size_t index = 0; index < ImageKeys.size(); ++index) {
    if (key == ImageKeys[index]) return static_cast<int>(index);
  }
  return -1;
}

}  // namespace sandrel
