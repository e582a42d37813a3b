// The Edit menu: what it offers, and the deletes that can still be undone.
#pragma once

#include "browser/clsMainControls.h"
#include "browser/clsPages.h"
#include "common/clsShell.h"

namespace sandrel {

class clsEditing {
 public:
  /// All must outlive the object.
  clsEditing(clsShell& shell, clsMainControls& controls, clsPages& pages)
      : m_shell(shell), m_controls(controls), m_pages(pages) {}

  /// Makes the deletes since the last commit final.
  void CommitPendingDeletes();
  /// Sets what the Edit menu and the toolbar offer.
  void mnuEdit_Click();

 private:
  clsShell& m_shell;
  clsMainControls& m_controls;
  clsPages& m_pages;
};

}  // namespace sandrel
