// The registry of a machine, by the operations of the Windows registry interface.
//
// A clsRegistry is a set of root keys over a provider (a Wine prefix's text hives, an offline
// volume's regf hives, or memory). Operations return the platform's status numbers; only the
// opening of a registry raises errors. Key and value names are UTF-8 text and compare without
// regard to case; data is bytes as Windows holds them, so strings are UTF-16 little endian with
// their terminating zero.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/clsNameIndex.h"

namespace sandrel {

/// Root keys, by the platform's numbers.
namespace hkey {
inline constexpr std::uint32_t ClassesRoot = 0x80000000u;
inline constexpr std::uint32_t CurrentUser = 0x80000001u;
inline constexpr std::uint32_t LocalMachine = 0x80000002u;
inline constexpr std::uint32_t Users = 0x80000003u;
inline constexpr std::uint32_t CurrentConfig = 0x80000005u;
}  // namespace hkey

/// Value types, by the platform's numbers; any other number is a type too.
namespace regtype {
inline constexpr std::uint32_t None = 0;
inline constexpr std::uint32_t Sz = 1;
inline constexpr std::uint32_t ExpandSz = 2;
inline constexpr std::uint32_t Binary = 3;
inline constexpr std::uint32_t Dword = 4;
inline constexpr std::uint32_t DwordBigEndian = 5;
inline constexpr std::uint32_t Link = 6;
inline constexpr std::uint32_t MultiSz = 7;
}  // namespace regtype

/// Results of the operations.
namespace regstatus {
inline constexpr std::int32_t Success = 0;
inline constexpr std::int32_t FileNotFound = 2;
inline constexpr std::int32_t AccessDenied = 5;
inline constexpr std::int32_t InvalidHandle = 6;
inline constexpr std::int32_t WriteFault = 29;
inline constexpr std::int32_t InvalidParameter = 87;
inline constexpr std::int32_t MoreData = 234;
inline constexpr std::int32_t NoMoreItems = 259;
}  // namespace regstatus

/// A file that a part of a registry was read from.
struct HiveFile {
  std::string Key;   ///< where it is found, as "HKEY_LOCAL_MACHINE\\SOFTWARE"
  std::string Path;  ///< host path
};

/// Keys below this level are not given.
inline constexpr std::size_t MaxKeyLevel = 512;

/// What the enumeration of a key doesn't give.
struct KeyGaps {
  std::uint64_t Subkeys = 0;  ///< that can't be read
  std::uint64_t Values = 0;   ///< likewise
  std::uint64_t Deep = 0;     ///< subkeys that lie below MaxKeyLevel
};

/// An open key of a provider. Implemented by each provider; callers go through clsRegistry. What it
/// gives stays as it was when first asked for, so open a key again to see changes.
class clsRegKey {
 public:
  clsRegKey() = default;
  virtual ~clsRegKey() = default;
  clsRegKey(const clsRegKey&) = delete;
  clsRegKey& operator=(const clsRegKey&) = delete;

  /// Names of the subkeys and of the values, in the provider's order, read once for each open key.
  /// Holds only what can be read.
  virtual const std::vector<std::string>& SubkeyNames() = 0;
  virtual const std::vector<std::string>& ValueNames() = 0;
  /// The subkey by its index in `SubkeyNames`, a new object at every call; empty when it has gone.
  /// A symbolic link comes as the link itself: following it is the registry's work.
  virtual std::shared_ptr<clsRegKey> Subkey(std::size_t index) = 0;
  /// Type and data of the value by its index in `ValueNames`; false when it has gone.
  virtual bool Value(std::size_t index, std::uint32_t& type, std::string& data) = 0;
  /// The path that a symbolic link leads to, as "\REGISTRY\MACHINE\...", an empty one where it
  /// holds none; nothing for other keys.
  virtual std::optional<std::string> LinkTarget() { return {}; }
  /// How many subkeys and values the key has that can't be read, and the lists above lack.
  virtual std::uint64_t RefusedSubkeys() { return 0; }
  virtual std::uint64_t RefusedValues() { return 0; }

 private:
  friend class clsRegistry;
  std::size_t FindSubkey(std::string_view name);
  std::size_t FindValue(std::string_view name);

  std::size_t m_level = 0;  // parts of the path by which it was opened last
  std::size_t m_subkeyFound = 0;
  std::size_t m_valueFound = 0;
  clsNameIndex m_subkeyIndex;
  clsNameIndex m_valueIndex;
};

class clsRegistry {
 public:
  using Handle = std::shared_ptr<clsRegKey>;

  virtual ~clsRegistry() = default;
  clsRegistry(const clsRegistry&) = delete;
  clsRegistry& operator=(const clsRegistry&) = delete;

  /// Opens the key `path` (parts joined by "\") below a root key; the empty path is the root
  /// itself. FileNotFound when it doesn't exist. Opening keys in the order of a depth-first walk
  /// costs no more than one step from the key opened before, however many subkeys the parents have.
  ///
  /// A symbolic link on the path is followed once: the key shows the subkeys and values of its
  /// target. A link that leads nowhere, in a circle or to what is no key path can't be opened, nor
  /// can one below a link that was followed, so that no walk runs in circles: FileNotFound, though
  /// their names are enumerated. An open key may outlive the registry, whose hives it keeps.
  std::int32_t RegOpenKeyEx(std::uint32_t root, std::string_view path, Handle& key);

  /// The name of the subkey or value with this index; NoMoreItems behind the last one, MoreData for
  /// a subkey whose name has 300 UTF-16 units or more.
  std::int32_t RegEnumKey(const Handle& key, std::size_t index, std::string& name);
  std::int32_t RegEnumValue(const Handle& key, std::size_t index, std::string& name);

  /// Type and data of a value; the default value has the empty name. String data (types 1, 2, 7)
  /// that lacks its terminating zero gets one, except data of size 0. Asking for the value that was
  /// enumerated last costs no search.
  std::int32_t RegQueryValueEx(const Handle& key, std::string_view name, std::uint32_t& type,
                               std::string& data);

  /// What the enumerations of an open key lack.
  static KeyGaps Gaps(const Handle& key);

  /// Writing. AccessDenied for a registry that is only read. A registry on disk is written by
  /// `Flush`, which replaces its files whole.
  virtual std::int32_t RegCreateKeyEx(std::uint32_t root, std::string_view path);
  virtual std::int32_t RegSetValueEx(std::uint32_t root, std::string_view path,
                                     std::string_view name, std::uint32_t type,
                                     std::string_view data);
  virtual std::int32_t RegDeleteValue(std::uint32_t root, std::string_view path,
                                      std::string_view name);
  virtual std::int32_t RegDeleteKey(std::uint32_t root, std::string_view path);
  virtual std::int32_t Flush() { return regstatus::Success; }

  /// Root keys that this registry has.
  const std::vector<std::uint32_t>& Roots() const { return m_roots; }

  /// The SID of the user whose hive is HKEY_CURRENT_USER, as its key in HKEY_USERS has it; empty
  /// when there is none.
  const std::string& CurrentUserSid() const { return m_currentUserSid; }

  /// The files that this registry was read from; none of one in memory.
  const std::vector<HiveFile>& HiveFiles() const { return m_hiveFiles; }

  /// What was found in the hives that the user should know, one sentence each: a hive whose log was
  /// not applied, for instance.
  const std::vector<std::string>& Remarks() const { return m_remarks; }

 protected:
  clsRegistry() = default;

  /// The root key itself; empty when the registry has no such root.
  virtual Handle OpenRoot(std::uint32_t root) = 0;

  /// To be called by a provider when its keys have changed: forgets what was remembered of open
  /// keys.
  void ForgetOpenKeys();

  /// To be called by a provider whose root keys have changed: finds out which ones there are.
  void FindRoots();

  /// The key `path` below a root key, links on the way followed; empty when it doesn't exist. For
  /// providers that make one root out of parts of others; remembers nothing.
  Handle FindKey(std::uint32_t root, std::string_view path);

  /// The roots that are views of others: HKEY_CLASSES_ROOT, the user's classes over the machine's,
  /// and HKEY_CURRENT_CONFIG, the current hardware profile. Empty for other roots.
  Handle OpenView(std::uint32_t root);

  std::string m_currentUserSid;
  std::vector<HiveFile> m_hiveFiles;
  std::vector<std::string> m_remarks;

 private:
  struct Step {  // one level of the path opened last
    Handle key;
    std::size_t end = 0;  // of the path to it
    bool insideLink = false;
  };

  Handle OpenSubkey(const Handle& parent, std::string_view name, bool mayFollow, bool& followed,
                    int& hops);
  Handle FindKey(std::uint32_t root, std::string_view path, int& hops);

  std::vector<std::uint32_t> m_roots;
  std::uint32_t m_lastRoot = 0;
  std::string m_lastPath;
  std::vector<Step> m_chain;  // from the root key down
};

/// The registry of a Wine prefix: `folder` holds system.reg, user.reg and userdef.reg. All files
/// are read here; raises errnum::Hive when one is missing, damaged or without any key. `Flush`
/// gives AccessDenied while a Wine server runs on the prefix, or when a file was changed by another
/// program since it was read, in which case its changes are dropped and it is read anew.
std::unique_ptr<clsRegistry> OpenPrefixRegistry(const std::string& folder);

/// The registry of an offline Windows volume mounted at `folder` (which holds
/// Windows/System32/config in any case). `user` names the profile that is HKEY_CURRENT_USER; when
/// empty it is the profile that was last logged on, else the first one with a hive. All hives are
/// opened and read into memory here; raises errnum::Hive when one that stands there can't be read,
/// when SOFTWARE or SYSTEM is missing, and when there is no profile `user`.
std::unique_ptr<clsRegistry> OpenVolumeRegistry(const std::string& folder, std::string_view user);

/// An empty registry in memory with all five roots, which share nothing, for tests. It can be
/// written.
std::unique_ptr<clsRegistry> MakeMemoryRegistry(std::string currentUserSid = {});

/// True when a Wine server runs on the prefix, so that its registry files may lag behind.
bool PrefixServerRuns(const std::string& folder);

}  // namespace sandrel
