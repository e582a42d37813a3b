// Which commands are enabled in which state, and what the toolbar's buttons run.
#pragma once

#include <functional>
#include <string>

#include "browser/clsMainControls.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"

namespace sandrel {

class clsCommandState {
 public:
  /// All must outlive the object. Sets the toolbar's event and the commands that show and hide
  /// toolbar and status bar.
  clsCommandState(clsShell& shell, clsSettings& settings, const clsHome& home,
                  clsMainControls& controls);

  /// Called when toolbar or status bar may have come or gone.
  std::function<void()> OnLayout;

  /// Enables the commands by what runs and which snapshots exist.
  void UpdateCommandState();
  /// Brings the File and Edit menus up to date; not while a scan runs or pages are loaded.
  void RefreshMenus();

  void tlbarMain_ButtonClick(const std::string& key);
  void mnuViewToolbar_Click();
  void mnuViewStatusbar_Click();

 private:
  void Toggle(const char* item, const char* key);
  void ShowBars();

  clsShell& m_shell;
  clsSettings& m_settings;
  const clsHome& m_home;
  clsMainControls& m_controls;
};

}  // namespace sandrel
