// The open analysis as the window reads and changes it: the deletes since the last commit, which
// can still be taken back, stand in one open transaction.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/dao/Workspace.h"

namespace sandrel {

class clsPendingDeletes {
 public:
  /// Begins; nothing can be read before.
  void Start();
  /// Takes back what is pending, and ends.
  void End();

  /// In which the analysis is read, what is pending seen as deleted. Raises 91 before `Start`.
  dao::Workspace& Workspace() const;

  /// The analysis at the host path is the one that is worked on from now on.
  void Note(const std::string& path);
  /// True when another file stands at its path by now, as after another program's analysis.
  bool IsReplaced() const;

  bool Any() const { return m_pending; }
  /// Opens the transaction.
  void Begin();
  /// Carries out a DELETE statement and gives the number of records that went. Raises what fails;
  /// an error that undid the transaction leaves nothing pending.
  std::int64_t Execute(const std::string& sql);
  /// Both do nothing when nothing is pending.
  void Commit();
  void Rollback();

 private:
  std::shared_ptr<dao::Workspace> m_workspace;
  std::unique_ptr<dao::Database> m_database;  // while something is pending
  std::string m_path;
  std::string m_identity;  // of the file that was read
  bool m_pending = false;
};

}  // namespace sandrel
