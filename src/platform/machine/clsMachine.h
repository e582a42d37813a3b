// The Windows machine that is looked at: a Wine prefix or an offline Windows volume.
//
// What is scanned has Windows paths ("C:\Program Files\"), UTF-8, found without regard to case. Host
// paths are bytes. A byte of a host name that belongs to no UTF-8 sequence is the private-use letter
// U+F700 + byte in the Windows name, reversibly.
#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/clsLeftOut.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {

/// File attribute bits of the platform; also the mask of a directory search.
namespace fileattr {
inline constexpr int ReadOnly = 1;
inline constexpr int Hidden = 2;
inline constexpr int System = 4;
inline constexpr int Volume = 8;
inline constexpr int Directory = 16;
inline constexpr int Archive = 32;
/// The search for files: read-only, hidden, system and archive ones, no folders.
inline constexpr int Files = ReadOnly | Hidden | System | Archive;
}  // namespace fileattr

/// Details of one file or folder, from one look at the disk.
struct FileDetails {
  std::time_t LastWritten = 0;  ///< UTC seconds
  std::uint64_t Length = 0;     ///< bytes; 0 for a folder
  int Attributes = 0;           ///< bits of fileattr
};

class clsMachine;

/// A directory search of one folder: every name that Windows would give, once, in byte order.
class clsDirSearch {
 public:
  ~clsDirSearch();
  clsDirSearch(clsDirSearch&&) noexcept;
  clsDirSearch& operator=(clsDirSearch&&) noexcept;

  /// The next name; false when the search has ended.
  bool Next(std::string& name);

  /// Details of the item that `Next` gave last. Raises 75 when it has vanished or can't be read.
  FileDetails Details() const;

  /// Host path of the item that `Next` gave last.
  std::string HostPath() const;

  /// True when the item that `Next` gave last is a folder.
  bool IsFolder() const;

 private:
  friend class clsMachine;
  struct State;
  explicit clsDirSearch(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

class clsMachine {
 public:
  enum class Kind { WinePrefix, OfflineVolume };

  /// Looks at the machine in `folder`: one with drive_c is a Wine prefix, one with
  /// Windows/System32/config (in any case) an offline volume. Anything else raises errnum::Machine
  /// with a description that names both. Opens no hive.
  static std::shared_ptr<clsMachine> Open(const std::string& folder);

  ~clsMachine();
  clsMachine(const clsMachine&) = delete;
  clsMachine& operator=(const clsMachine&) = delete;

  Kind MachineKind() const;
  /// The machine's folder on the host, absolute.
  const std::string& Folder() const;

  /// The drives, as "C:", in the order of their letters.
  std::vector<std::string> Drives() const;
  /// The drive that a drive list shows first: "C:" where there is one.
  std::string CurrentDrive() const;

  /// Where a Windows path lies on the host, found without regard to case; nothing when it doesn't
  /// exist. Resolving paths in the order of a depth-first walk costs a step each.
  std::optional<std::string> HostPath(std::string_view windowsPath) const;
  /// The Windows path of a host path, by the first drive that holds it; nothing when none does. The
  /// path need not exist.
  std::optional<std::string> WindowsPath(const std::string& hostPath) const;

  bool FileExists(std::string_view windowsPath) const;
  bool FolderExists(std::string_view windowsPath) const;
  /// Raises 75 when the file has vanished or can't be read.
  FileDetails Details(std::string_view windowsPath) const;

  /// Starts a search of all names of a folder (as the pattern "*.*"). With the mask fileattr::Files
  /// it gives files, hidden and system ones too; with fileattr::Directory it gives ordinary files and
  /// ordinary folders, no hidden or system ones. Raises 52 when the folder can't be read. What is left
  /// out is counted, by the search for files except for hidden folders and folders of the kernel's,
  /// which the search for folders counts. Two searches of one folder in a row read the disk once.
  clsDirSearch Dir(std::string_view folder, int mask);

  /// The Windows folder and the system folder, without a trailing backslash, as "C:\windows".
  std::string WindowsFolder();
  std::string SystemFolder();
  /// An environment variable of the machine's, expanded: the user's before the system's, from its
  /// registry; empty when there is none. Never the host's.
  std::string Environ(std::string_view name);

  /// The machine's registry. Opened at the first call and kept; raises errnum::Hive when a hive can't
  /// be read.
  clsRegistry& Registry();
  /// Forgets the opened registry, so that the next use reads the hives anew.
  void CloseRegistry();

  /// The registry of the computer `name` (with or without leading backslashes): the machine folder of
  /// that name in $SANDREL_NETWORK. Null when it can't be reached.
  std::shared_ptr<clsRegistry> RegConnectRegistry(std::string_view name);

  /// What directory searches left out so far; cleared by the reader.
  clsLeftOut& LeftOutCounts();

 private:
  struct State;
  explicit clsMachine(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

}  // namespace sandrel
