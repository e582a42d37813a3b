#include "platform/controls/Bars.h"

#include "common/clsError.h"

namespace sandrel {

ToolbarButton& Toolbar::Button(std::string_view key) {
  for (ToolbarButton& button : Buttons) {
    if (button.Key == key) return button;
  }
  throw clsError(errnum::ElementNotFound, "Element not found: " + std::string(key), "Toolbar");
}

void Toolbar::Enable(std::string_view key, bool enabled) {
  ToolbarButton& button = Button(key);
  if (button.Enabled == enabled) return;
  button.Enabled = enabled;
  if (Changed) Changed();
}

void Toolbar::SetVisible(bool visible) {
  if (m_visible == visible) return;
  m_visible = visible;
  if (Changed) Changed();
}

}  // namespace sandrel
