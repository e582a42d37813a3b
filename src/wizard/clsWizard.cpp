#include "wizard/clsWizard.h"

#include "common/clsError.h"

namespace sandrel {

void clsWizard::SetPageVisible(std::span<WizardPage> pages, std::int16_t page, bool& nextEnabled,
                               bool& previousEnabled) {
  const auto last = static_cast<std::int16_t>(pages.size()) - 1;
  for (std::size_t index = 0; index < pages.size(); ++index) {
    pages[index].Visible = static_cast<int>(index) == page;
  }
  nextEnabled = page != last;
  previousEnabled = page != 0;
}

std::string clsWizard::FileOpen(clsShell& dialog, const std::string& fileName,
                                const std::string& title, const std::string& filter) {
  try {
    return dialog.ChooseFile({title, "", fileName, filter, "", false});
  } catch (const clsError&) {
    return {};
  }
}

}  // namespace sandrel
