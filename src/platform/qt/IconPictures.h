// The drawings behind the icons: what is drawn, without how it is cached and shown.
#pragma once

#include <string_view>

#include "platform/qt/clsIconCanvas.h"

namespace sandrel::icons {

using Picture = void (*)(clsIconCanvas& canvas);

/// The drawing of a picture of tree and lists; null for an unknown key.
Picture FindImagePicture(std::string_view key);

/// The drawing of a command; null for an unknown key.
Picture FindToolPicture(std::string_view key);

/// The application's icon.
void DrawWindow(clsIconCanvas& canvas);

/// What more than one picture shows: a sheet with a folded corner of `fold` units at its upper
/// right.
void DrawPage(clsIconCanvas& canvas, double x, double y, double width, double height, double fold);

}  // namespace sandrel::icons
