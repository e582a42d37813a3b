// Moves between the pages of a wizard.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "common/clsShell.h"

namespace sandrel {

struct WizardPage {
  bool Visible = false;
};

struct WizardRectangle {
  int Left = 0, Top = 0, Width = 0, Height = 0;
};

class clsWizard {
 public:
  static constexpr int PictureWidth = 1110;  // twips

  static void Inc(std::int16_t& value) { ++value; }
  static void DInc(std::int16_t& value) { --value; }

  /// Shows the page with the index `page`. The buttons' state tells whether
  /// there is a page behind it and one before.
  static void SetPageVisible(std::span<WizardPage> pages, std::int16_t page, bool& nextEnabled,
                             bool& previousEnabled);

  /// Asks for a file to open; `filter` as in FileDialog. Empty when there is none.
  static std::string FileOpen(clsShell& dialog, const std::string& fileName,
                              const std::string& title, const std::string& filter);

  /// Where the wizard's picture stands in a form of that inner height, twips.
  static WizardRectangle SetWizPic(int formHeight) { return {0, 0, PictureWidth, formHeight}; }

  std::int16_t FocusSetById() const { return 0; }
  std::string Title;
  std::int32_t MatchBy = 0;
  bool CaseSensitive = false;
  bool VisibleOnly = false;
  std::string WindowDetails;
};

}  // namespace sandrel
