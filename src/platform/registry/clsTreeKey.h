// An open key of a tree in memory.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/registry/clsKeyTree.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {

/// Name and type of the value that holds the target of a symbolic link.
inline constexpr const char* LinkValueName = "SymbolicLinkValue";

/// The target of a link out of that value's data.
std::string LinkTargetOf(std::string_view data);

class clsTreeKey : public clsRegKey {
 public:
  /// Keeps the tree alive.
  clsTreeKey(std::shared_ptr<clsKeyTree> tree, clsKeyTree::Key* key);

  const std::vector<std::string>& SubkeyNames() override;
  const std::vector<std::string>& ValueNames() override;
  std::shared_ptr<clsRegKey> Subkey(std::size_t index) override;
  bool Value(std::size_t index, std::uint32_t& type, std::string& data) override;
  std::optional<std::string> LinkTarget() override;

 private:
  std::shared_ptr<clsKeyTree> m_tree;
  clsKeyTree::Key* m_key;
  bool m_subkeysRead = false;
  bool m_valuesRead = false;
  std::vector<std::string> m_subkeyNames;
  std::vector<clsKeyTree::Key*>
      m_subkeys;  // in step with the names, as the tree may change meanwhile
  std::vector<std::string> m_valueNames;
};

}  // namespace sandrel
