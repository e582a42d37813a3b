// The Windows folder and the environment variables of a machine, from its registry; never the
// host's.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/machine/clsPathMap.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {

/// Looks into a registry; lives no longer than the registry and the path map, both the caller's.
class clsEnvironment {
 public:
  clsEnvironment(clsRegistry& registry, clsPathMap& paths) : m_registry(registry), m_paths(paths) {}

  /// The Windows folder, without a trailing backslash: the registry's, or the folder "windows" of
  /// C: where that isn't on this machine.
  std::string WindowsFolder();

  /// A variable's text, its references to other variables expanded: the user's before the system's.
  /// Empty when there is none. A reference to an unknown variable stays as it is.
  std::string Variable(std::string_view name);

 private:
  std::optional<std::string> Text(std::uint32_t root, std::string_view path, std::string_view name);
  std::optional<std::string> Find(std::string_view name, std::size_t firstSource);
  std::optional<std::string> Known(std::string_view name);
  std::string Expand(std::string_view text);
  std::string UserProfile();

  struct Open {
    std::string Name;    // of a variable that is being expanded
    std::size_t Source;  // where it was found
  };

  clsRegistry& m_registry;
  clsPathMap& m_paths;
  std::vector<Open> m_open;
  int m_references = 0;
};

}  // namespace sandrel
