// Texts addressed by section and key, to be read: the user's settings, or those that a snapshot was
// taken with.
#pragma once

#include <string>
#include <string_view>

namespace sandrel {

class clsSettingsSource {
 public:
  virtual ~clsSettingsSource() = default;

  /// The stored text, or `fallback` when there is none. Sections and keys compare without regard to
  /// case. Never fails.
  virtual std::string GetSetting(std::string_view section, std::string_view key,
                                 std::string_view fallback) = 0;
  std::string GetSetting(std::string_view section, std::string_view key) {
    return GetSetting(section, key, {});
  }
};

}  // namespace sandrel
