#include "browser/clsEditing.h"

#include "common/clsError.h"

namespace sandrel {

void clsEditing::CommitPendingDeletes() {
  if (m_controls.PendingDeletes) {
    Need(m_controls.DeletesWorkspace).CommitTrans();
    m_controls.PendingDeletes = false;
  }
  m_shell.UpdateCommandState();
}

void clsEditing::mnuEdit_Click() {
  const auto enable = [&](const char* item, const char* button, bool enabled) {
    m_controls.Menus[item].SetEnabled(enabled);
    m_controls.EnableButton(button, enabled);
  };
  const bool open = !m_shell.State.AnalysisPath.empty();
  const bool rows =
      open && m_pages.CurrentListIndex() != page::Stats && m_pages.CountSelected(false) >= 1;
  enable("mnuEditUndo", "Undo", m_controls.PendingDeletes);
  enable("mnuEditDelete", "Delete", rows);
  enable("mnuEditCopy", "Copy", rows);
  m_controls.Menus["mnuEditSelectAll"].SetEnabled(open && m_pages.CurrentList().RowCount() > 0);
}

}  // namespace sandrel
