// The registry in memory: five roots that share nothing.
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/registry/clsTreeKey.h"
#include "platform/registry/clsTreeRegistry.h"
#include "platform/registry/keypath.h"

namespace sandrel {
namespace {

class clsMemoryRegistry : public clsTreeRegistry {
 public:
  explicit clsMemoryRegistry(std::string currentUserSid) {
    m_currentUserSid = std::move(currentUserSid);
    for (const std::uint32_t root : {hkey::ClassesRoot, hkey::CurrentUser, hkey::LocalMachine,
                                     hkey::Users, hkey::CurrentConfig}) {
      m_trees[root] = std::make_shared<clsKeyTree>();
    }
    FindRoots();
  }

 protected:
  Handle OpenRoot(std::uint32_t root) override {
    const auto found = m_trees.find(root);
    if (found == m_trees.end()) return {};
    return std::make_shared<clsTreeKey>(found->second, found->second->Root());
  }

  std::int32_t Locate(std::uint32_t root, std::string_view path, const std::string_view* /*name*/,
                      Place& place) override {
    const auto found = m_trees.find(root);
    if (found == m_trees.end()) return regstatus::FileNotFound;
    place.tree = found->second.get();
    place.key = place.tree->Root();
    while (!path.empty()) {
      std::string_view rest = path;
      clsKeyTree::Key* below = clsKeyTree::FindSubkey(*place.key, keypath::CutPart(rest));
      if (below == nullptr) break;
      place.key = below;
      path = rest;
    }
    place.missing = path;
    return regstatus::Success;
  }

  void Changed(const clsKeyTree& /*tree*/) override {}

 private:
  std::map<std::uint32_t, std::shared_ptr<clsKeyTree>> m_trees;
};

}  // namespace

std::unique_ptr<clsRegistry> MakeMemoryRegistry(std::string currentUserSid) {
  return std::make_unique<clsMemoryRegistry>(std::move(currentUserSid));
}

}  // namespace sandrel
