#include "browser/clsPendingDeletes.h"

#include "common/clsError.h"
#include "common/clsFileWorks.h"

namespace sandrel {

void clsPendingDeletes::Start() {
  // Deletes wait for long; meanwhile others can read the file.
  m_workspace =
      dao::DBEngine::CreateWorkspace("Deletes", dao::Durability::Full, dao::Overflow::ToMemory);
}

void clsPendingDeletes::End() {
  m_database.reset();
  m_workspace.reset();
  m_pending = false;
}

dao::Workspace& clsPendingDeletes::Workspace() const {
  return Need(m_workspace);
}

void clsPendingDeletes::Note(const std::string& path) {
  m_path = path;
  m_identity = clsFileWorks::Identity(path);
}

bool clsPendingDeletes::IsReplaced() const {
  return !m_identity.empty() && clsFileWorks::Identity(m_path) != m_identity;
}

void clsPendingDeletes::Begin() {
  m_database = Workspace().OpenDatabase(m_path);
  try {
    Workspace().BeginTrans();
  } catch (const clsError&) {
    m_database.reset();
    throw;
  }
  m_pending = true;
}

std::int64_t clsPendingDeletes::Execute(const std::string& sql) {
  try {
    Need(m_database).Execute(sql);
    return m_database->RecordsAffected();
  } catch (const clsError& error) {
    if (error.RolledBack()) Rollback();  // so that the next delete can begin one
    throw;
  }
}

void clsPendingDeletes::Commit() {
  if (!m_pending) return;
  try {
    Workspace().CommitTrans();
  } catch (const clsError& error) {
    if (error.RolledBack()) {
      m_pending = false;
      m_database.reset();
    }
    throw;
  }
  m_pending = false;
  m_database.reset();
}

void clsPendingDeletes::Rollback() {
  if (!m_pending) return;
  m_pending = false;
  Workspace().Rollback();
  m_database.reset();
}

}  // namespace sandrel
