// A registry over trees in memory, which can be written.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/registry/clsKeyTree.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {

class clsTreeRegistry : public clsRegistry {
 public:
  /// Makes the key and those above it that are missing. InvalidParameter for a name that no key can
  /// have, FileNotFound when the registry lacks the root.
  std::int32_t RegCreateKeyEx(std::uint32_t root, std::string_view path) override;
  /// FileNotFound when the key doesn't exist.
  std::int32_t RegSetValueEx(std::uint32_t root, std::string_view path, std::string_view name,
                             std::uint32_t type, std::string_view data) override;
  std::int32_t RegDeleteValue(std::uint32_t root, std::string_view path,
                              std::string_view name) override;
  /// AccessDenied for a key with subkeys, as on Windows.
  std::int32_t RegDeleteKey(std::uint32_t root, std::string_view path) override;

 protected:
  /// Where a path leads: the last key on it that exists, and the parts that don't.
  struct Place {
    clsKeyTree* tree = nullptr;
    clsKeyTree::Key* key = nullptr;
    std::string missing;
  };

  /// Finds the place of a path that is about to be written; `name` is the value meant, if any.
  /// Gives a status.
  virtual std::int32_t Locate(std::uint32_t root, std::string_view path,
                              const std::string_view* name, Place& place) = 0;

  /// Called after the keys of this tree have changed.
  virtual void Changed(const clsKeyTree& tree) = 0;

 private:
  void Touch(const Place& place);
};

}  // namespace sandrel
