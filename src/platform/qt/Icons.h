// Sandrel's icons. They are drawn by code, so that they are sharp at every size and device pixel
// ratio and follow light and dark palettes.
#pragma once

#include <QIcon>
#include <string_view>

namespace sandrel::icons {

/// The picture of tree and lists with this key of ImageKeys; a null icon for an unknown key. The
/// icon is shared: its pixmaps are drawn once, so take it once a row without a thought.
QIcon Image(std::string_view key);

/// The picture of a command by its toolbar key ("Open", "BeforeSnapshot"...); a null icon for an
/// unknown key. Shared like Image.
QIcon Tool(std::string_view key);

/// The application's icon, for windows and for the tray.
QIcon Window();

}  // namespace sandrel::icons
