// The registry of a Wine prefix.
#include <sys/stat.h>

#include <array>
#include <memory>
#include <string>
#include <utility>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/text.h"
#include "platform/registry/clsTreeKey.h"
#include "platform/registry/clsTreeRegistry.h"
#include "platform/registry/composedkeys.h"
#include "platform/registry/keypath.h"
#include "platform/registry/texthive.h"

namespace sandrel {
namespace {

constexpr const char* UsualUserSid = "S-1-5-21-0-0-0-1000";  // Wine gives every user this one
constexpr std::string_view ClassesPath = "Software\\Classes";
constexpr std::string_view HardwarePath = "System\\CurrentControlSet\\Hardware Profiles";
constexpr int MaxHops = 8;

// What tells one state of a file from another.
struct FileState {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = -1;
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;
  bool operator==(const FileState&) const = default;
};

FileState StateOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
          status.st_mtim.tv_nsec};
}

struct PrefixHive {
  std::string path;
  FileState state;
  TextHive hive;
  bool changed = false;
};

void ReadHive(PrefixHive& file) {
  // The state is taken first: a file that changes while it is read counts as changed afterwards.
  file.state = StateOf(file.path);
  std::string content;
  try {
    content = clsFileWorks::ReadWhole(file.path);
  } catch (const clsError& error) {
    throw clsError(errnum::Hive,
                   "Can't read a registry hive of the Wine prefix: " + error.Description() +
                       ". Check that the folder is a whole prefix and can be read.");
  }
  file.hive = ReadTextHive(content, file.path);
  file.changed = false;
}

std::shared_ptr<clsRegKey> OpenHive(const std::shared_ptr<clsKeyTree>& tree) {
  return std::make_shared<clsTreeKey>(tree, tree->Root());
}

class clsPrefixRegistry : public clsTreeRegistry {
 public:
  explicit clsPrefixRegistry(std::string folder) : m_folder(std::move(folder)) {
    static constexpr std::array<const char*, 3> Names = {"system.reg", "user.reg", "userdef.reg"};
    for (std::size_t i = 0; i < Names.size(); ++i) {
      m_files[i].path = clsFileWorks::Join(m_folder, Names[i]);
      ReadHive(m_files[i]);
    }
    m_currentUserSid = UserSid();
    m_hiveFiles = {{"HKEY_LOCAL_MACHINE", m_files[System].path},
                   {"HKEY_CURRENT_USER", m_files[User].path},
                   {"HKEY_USERS\\.DEFAULT", m_files[DefaultUser].path}};
    FindRoots();
  }

  std::int32_t Flush() override;

 protected:
  Handle OpenRoot(std::uint32_t root) override;
  std::int32_t Locate(std::uint32_t root, std::string_view path, const std::string_view* name,
                      Place& place) override;
  void Changed(const clsKeyTree& tree) override;

 private:
  // By their places in m_files.
  static constexpr std::size_t System = 0;
  static constexpr std::size_t User = 1;
  static constexpr std::size_t DefaultUser = 2;

  const std::shared_ptr<clsKeyTree>& Tree(std::size_t file) const {
    return m_files[file].hive.tree;
  }
  std::string UserSid() const;
  std::int32_t LocateInHives(std::uint32_t root, std::string_view path, int hops, Place& place);
  bool ReadAgainIfStale(PrefixHive& file);

  std::string m_folder;
  std::array<PrefixHive, 3> m_files;
};

// The comment at the head of user.reg names the user's key.
std::string clsPrefixRegistry::UserSid() const {
  static constexpr std::string_view UserKey = "\\\\User\\\\S-";
  const std::string& head = m_files[User].hive.head;
  const std::size_t start = head.find(UserKey);
  if (start == std::string::npos) return UsualUserSid;
  const std::size_t sid = start + UserKey.size() - 2;
  return head.substr(sid, head.find_first_of("\\\r\n", sid) - sid);
}

clsRegistry::Handle clsPrefixRegistry::OpenRoot(std::uint32_t root) {
  switch (root) {
    case hkey::LocalMachine:
      return OpenHive(Tree(System));
    case hkey::CurrentUser:
      return OpenHive(Tree(User));
    case hkey::Users: {
      auto users = std::make_shared<clsFolderKey>();
      users->Add(".DEFAULT", [tree = Tree(DefaultUser)] { return OpenHive(tree); });
      users->Add(m_currentUserSid, [tree = Tree(User)] { return OpenHive(tree); });
      return users;
    }
    default:
      return OpenView(root);
  }
}

// Writing to a view goes to the key that the view shows.
std::int32_t clsPrefixRegistry::Locate(std::uint32_t root, std::string_view path,
                                       const std::string_view* name, Place& place) {
  for (PrefixHive& file : m_files) {
    if (!file.changed && !ReadAgainIfStale(file)) return regstatus::AccessDenied;
  }
  if (root == hkey::ClassesRoot) {
    const std::string below = keypath::Join(ClassesPath, path);
    const std::int32_t status = LocateInHives(hkey::CurrentUser, below, MaxHops, place);
    const bool users = status == regstatus::Success && place.missing.empty() &&
                       (name == nullptr || clsKeyTree::FindValue(*place.key, *name) != nullptr);
    if (users) return status;
    place = {};
    return LocateInHives(hkey::LocalMachine, below, MaxHops, place);
  }
  if (root == hkey::CurrentConfig) {
    const bool current =
        FindKey(hkey::LocalMachine, keypath::Join(HardwarePath, "Current")) != nullptr;
    const std::string profile = keypath::Join(HardwarePath, current ? "Current" : "0001");
    return LocateInHives(hkey::LocalMachine, keypath::Join(profile, path), MaxHops, place);
  }
  return LocateInHives(root, path, MaxHops, place);
}

std::int32_t clsPrefixRegistry::LocateInHives(std::uint32_t root, std::string_view path, int hops,
                                              Place& place) {
  std::size_t file = System;
  if (root == hkey::CurrentUser) {
    file = User;
  } else if (root == hkey::Users) {
    if (keypath::CutPrefix(path, m_currentUserSid)) {
      file = User;
    } else if (keypath::CutPrefix(path, ".DEFAULT")) {
      file = DefaultUser;
    } else {
      return path.empty() ? regstatus::InvalidParameter : regstatus::FileNotFound;
    }
  } else if (root != hkey::LocalMachine) {
    return regstatus::FileNotFound;
  }
  place.tree = Tree(file).get();
  place.key = place.tree->Root();
  while (!path.empty()) {
    std::string_view rest = path;
    clsKeyTree::Key* below = clsKeyTree::FindSubkey(*place.key, keypath::CutPart(rest));
    if (below == nullptr) break;
    path = rest;
    place.key = below;
    if (!below->link) continue;
    std::uint32_t targetRoot = 0;
    std::string_view targetPath;
    const std::string target = clsTreeKey(Tree(file), below).LinkTarget().value_or(std::string());
    if (hops == 0 || !keypath::ReadLinkTarget(target, targetRoot, targetPath)) {
      return regstatus::FileNotFound;  // what can't be opened isn't written either
    }
    return LocateInHives(targetRoot, keypath::Join(targetPath, path), hops - 1, place);
  }
  place.missing = path;
  return regstatus::Success;
}

void clsPrefixRegistry::Changed(const clsKeyTree& tree) {
  for (PrefixHive& file : m_files) {
    if (file.hive.tree.get() == &tree) file.changed = true;
  }
  FindRoots();
}

// False when the file is stale and can't be read again.
bool clsPrefixRegistry::ReadAgainIfStale(PrefixHive& file) {
  if (StateOf(file.path) == file.state) return true;
  try {
    ReadHive(file);
  } catch (const clsError&) {
    return false;
  }
  ForgetOpenKeys();
  FindRoots();
  return true;
}

std::int32_t clsPrefixRegistry::Flush() {
  bool anyChanged = false;
  bool anyStale = false;
  for (const PrefixHive& file : m_files) {
    anyChanged = anyChanged || file.changed;
    anyStale = anyStale || (file.changed && !(StateOf(file.path) == file.state));
  }
  if (!anyChanged) return regstatus::Success;
  // A server would write its own state over the files, and what it has written meanwhile must not
  // get lost.
  if (PrefixServerRuns(m_folder)) return regstatus::AccessDenied;
  if (anyStale) {
    for (PrefixHive& file : m_files) ReadAgainIfStale(file);
    return regstatus::AccessDenied;
  }
  for (PrefixHive& file : m_files) {
    if (!file.changed) continue;
    try {
      clsFileWorks::ReplaceWhole(file.path, WriteTextHive(file.hive));
    } catch (const clsError& error) {
      return error.Number() == errnum::PermissionDenied ? regstatus::AccessDenied
                                                        : regstatus::WriteFault;
    }
    file.state = StateOf(file.path);
    file.changed = false;
  }
  return regstatus::Success;
}

}  // namespace

std::unique_ptr<clsRegistry> OpenPrefixRegistry(const std::string& folder) {
  return std::make_unique<clsPrefixRegistry>(folder);
}

}  // namespace sandrel
