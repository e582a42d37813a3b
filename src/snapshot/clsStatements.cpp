#include "snapshot/clsStatements.h"

namespace sandrel {

bool clsStatements::Again(const clsError& error) {
  // The statements behind the one that lost the transaction meet its absence; once is enough to
  // tell.
  if (m_lost && error.RolledBack()) return false;
  const std::string description = m_advice ? m_advice(error) : error.Description();
  const Answer answer = m_shell.ReportError(error.Number(), description, error.Source(), m_method);
  if (answer == Answer::Abort) throw Aborted{};
  if (error.RolledBack()) {
    m_lost = true;
    m_shell.State.Scanning = false;
    return false;
  }
  return answer == Answer::Retry;
}

}  // namespace sandrel
