// Where a window stands, in the settings: its state as a number, its place and size in twips.
#pragma once

#include "config/clsSettings.h"

class QWidget;

namespace sandrel::placement {

/// Places a window that isn't shown yet as it was saved; else in the middle of the screen, over
/// four fifths of its width and height.
void Load(QWidget& window, clsSettings& settings, const char* section);

/// Saves the state, and place and size where the window is neither minimised nor maximised. Raises
/// what clsSettings does.
void Save(const QWidget& window, clsSettings& settings, const char* section);

}  // namespace sandrel::placement
