// The Windows machine that is looked at: a Wine prefix or an offline Windows volume.
//
// What is scanned has Windows paths ("C:\Program Files\"), UTF-8, found without regard to case.
// Host paths are bytes. A byte of a host name that belongs to no UTF-8 sequence is the private-use
// letter U+F700 + byte in the Windows name, reversibly.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/machine/clsDirSearch.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {

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
  /// The Windows path of a host path, which need not exist, by the drive whose folder lies nearest
  /// above it (the first letter of several); nothing when no drive holds it.
  std::optional<std::string> WindowsPath(const std::string& hostPath) const;
  /// The same by every drive that holds it.
  std::vector<std::string> WindowsPaths(const std::string& hostPath) const;

  bool FileExists(std::string_view windowsPath) const;
  bool FolderExists(std::string_view windowsPath) const;
  /// Why a folder that can't be searched can't, in the system's words; nothing when it has gone.
  std::optional<std::string> Refusal(std::string_view windowsPath) const;
  /// Raises 75 when the file has vanished or can't be read.
  FileDetails Details(std::string_view windowsPath) const;

  /// Starts a search of all names of a folder (as the pattern "*.*"). With the mask fileattr::Files
  /// it gives files, hidden and system ones too; with fileattr::Directory it gives ordinary files
  /// and ordinary folders, no hidden or system ones. Raises 52 when the folder can't be read. A
  /// search for folders that follows the search for files of the same folder reads the disk no
  /// second time.
  clsDirSearch Dir(std::string_view folder, int mask);

  /// The Windows folder and the system folder, without a trailing backslash, as "C:\windows".
  std::string WindowsFolder();
  std::string SystemFolder();
  /// An environment variable of the machine's, expanded: the user's before the system's, from its
  /// registry; empty when there is none. Never the host's.
  std::string Environ(std::string_view name);

  /// The machine's registry. Opened at the first call and kept; raises errnum::Hive when a hive
  /// can't be read.
  clsRegistry& Registry();
  /// Forgets the opened registry, and those of remote computers, so that the next use reads the
  /// hives anew.
  void CloseRegistry();

  /// The computer `name` (with or without leading backslashes): the machine folder of that name in
  /// $SANDREL_NETWORK. Null when it isn't there.
  std::shared_ptr<clsMachine> Connect(std::string_view name);
  /// The registry of the computer `name` (with or without leading backslashes): the machine folder
  /// of that name in $SANDREL_NETWORK. Null when it isn't there; raises errnum::Hive when one of
  /// its hives can't be read.
  std::shared_ptr<clsRegistry> RegConnectRegistry(std::string_view name);

 private:
  struct State;
  explicit clsMachine(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

}  // namespace sandrel
