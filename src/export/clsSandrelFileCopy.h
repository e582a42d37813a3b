// Copies files of the machine to a folder of the host, with progress and a summary.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/clsError.h"
#include "common/clsShell.h"
#include "export/clsCopyProgress.h"
#include "platform/machine/clsMachine.h"

namespace sandrel {

class clsTargetFolder;

class clsSandrelFileCopy {
 public:
  /// All must outlive the object.
  clsSandrelFileCopy(clsShell& shell, clsMachine& machine, clsCopyProgress& progress)
      : m_shell(shell), m_machine(machine), m_progress(progress) {}

  /// Puts the files of each drive below a folder named by its letter, as they lie below the drive;
  /// the prefix of `CopyFiles` is not looked at then.
  bool DriveFolders = false;

  /// Answers an error in the place of the shell's box.
  std::function<Answer(const std::string& file, const clsError& error)> OnError;

  /// Copies `files` (Windows paths) into the host folder `destinationFolder`: below it as they lie
  /// below the folder `rootPrefix` (without its last backslash), or all into it when that is empty.
  /// A file that stands there is replaced. Adds the summary's lines to `results`. `totalBytes` is
  /// what the files hold together, and what is left of it afterwards. Ends early, with what was
  /// done so far, when the user cancels or answers Abort to an error.
  void CopyFiles(const std::vector<std::string>& files, const std::string& destinationFolder,
                 const std::string& rootPrefix, std::vector<std::string>& results,
                 std::int64_t& totalBytes);

  /// Files of the last run that were copied.
  std::int64_t Copied() const { return m_copied; }

  /// The lines of a run as one text, with the number of deleted files that weren't copied.
  static std::string Summary(std::vector<std::string> results, std::int64_t deleted);

 private:
  enum class Next : std::uint8_t { Done, Skip, Stop };

  Next CopyOne(clsTargetFolder& target, const std::string& file, const std::string& rootPrefix);
  template <class Statement>
  Next Try(Statement&& statement);
  void TellTime(std::int64_t bytes, double seconds, std::int64_t& totalBytes);
  std::string Below(const std::string& file, const std::string& rootPrefix) const;

  clsShell& m_shell;
  clsMachine& m_machine;
  clsCopyProgress& m_progress;
  std::string m_destination;
  std::int64_t m_copied = 0, m_missing = 0, m_ignored = 0;
  std::int64_t m_lowestTime = 0;  // seconds told last; 0 for none yet
  std::int64_t m_bytesDone = 0;
  double m_secondsTaken = 0;
  std::string m_file;  // the one in progress
};

}  // namespace sandrel
