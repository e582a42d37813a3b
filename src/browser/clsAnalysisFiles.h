// The File menu: which analysis is open, and the list of the recent ones.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "browser/clsMainControls.h"
#include "browser/clsPages.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"

namespace sandrel {

class clsAnalysisFiles {
 public:
  /// All must outlive the object. `open` opens the analysis at a host path and tells whether it is
  /// one.
  clsAnalysisFiles(clsShell& shell, clsSettings& settings, clsMainControls& controls,
                   clsPages& pages, const clsHome& home,
                   std::function<bool(const std::string& path)> open);

  void mnuFileOpen_Click();
  /// Opens an analysis; a file that isn't there is told.
  void OpenNamed(const std::string& path);
  void mnuFileRecent_Click(int index);
  /// Sets what the File menu and the toolbar offer.
  void mnuFile_Click();

  /// Makes `path` the first of the recent files and the window's title.
  void UpdateFileMenu(const std::string& path);
  void AddToRecentFileList(const std::string& path);
  /// Compares without regard to case.
  void RemoveFromRecentFileList(const std::string& path);
  void UpdateRecentFileMenu();
  /// 0 to 5 by index from 1; empty where there is none.
  std::string RecentFile(int index);

  /// A path as the menu shows it: at most 40 characters.
  static std::string ShortPath(const std::string& path);

 private:
  void Keep(const std::function<void()>& save);
  void Store(int index, const std::string& path);

  clsShell& m_shell;
  clsSettings& m_settings;
  clsMainControls& m_controls;
  clsPages& m_pages;
  const clsHome& m_home;
  std::function<bool(const std::string& path)> m_open;
  std::array<std::string, 6> m_shownRecent;  // by the numbers of the menu's items, from 1
};

}  // namespace sandrel
