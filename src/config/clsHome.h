// The program's folder (App.Path): where the working database lives, and which machine is looked
// at.
#pragma once

#include <memory>
#include <string>

#include "config/clsSettings.h"

namespace sandrel {

class clsHome {
 public:
  /// The folder `given`, else $SANDREL_HOME, else the executable's folder when it is writable, else
  /// "sandrel" in the user's data folder. Makes nothing: the lock below does.
  static clsHome Find(const std::string& given);

  explicit clsHome(std::string folder) : m_folder(std::move(folder)) {}

  /// Absolute host path.
  const std::string& Path() const { return m_folder; }
  /// Host path of the working database.
  std::string WorkingDatabase() const;

 private:
  std::string m_folder;
};

/// Held while a snapshot command works on a home folder. Raises errnum::HomeBusy when another
/// process holds it; inside one process it nests. The system releases it when the process ends,
/// however that happens.
class clsHomeLock {
 public:
  /// Makes the folder when it is missing; raises the number of the failure.
  explicit clsHomeLock(const clsHome& home);

 private:
  struct LockedFile;
  std::shared_ptr<LockedFile> m_file;
};

/// The folder of the machine that is looked at: `given`, else $SANDREL_MACHINE, else $WINEPREFIX,
/// else the machine chosen in the settings, else the user's default prefix.
std::string MachineFolder(const std::string& given, clsSettings& settings);

}  // namespace sandrel
