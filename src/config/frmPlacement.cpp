#include "config/frmPlacement.h"

#include <fmt/format.h>

#include <QApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "common/text.h"
#include "platform/qt/modTwips.h"

namespace sandrel::placement {
namespace {

constexpr int Normal = 0;
constexpr int Minimized = 1;
constexpr int Maximized = 2;

}  // namespace

void Load(QWidget& window, clsSettings& settings, const char* section) {
  const auto number = [&](const char* key, double fallback) {
    const std::string stored = settings.GetSetting(section, key);
    constexpr double Most = 1e6;
    const double twips = stored.empty() ? fallback : text::Val(stored);
    return qt::ToPixels(static_cast<int>(std::clamp(twips, -Most, Most)));
  };
  const int state = static_cast<int>(text::Val(settings.GetSetting(section, "WindowState")));
  const QRect screen = QApplication::primaryScreen()->availableGeometry();
  const double screenWidth = qt::ToTwips(screen.width());
  const double screenHeight = qt::ToTwips(screen.height());
  QSize size(number("Width", 0.8 * screenWidth), number("Height", 0.8 * screenHeight));
  if (state != Normal) size = screen.size() * 0.8;
  window.resize(size.expandedTo({200, 100}));
  if (state != Normal) {
    window.setWindowState(state == Maximized ? Qt::WindowMaximized : Qt::WindowMinimized);
    return;
  }
  const double left = qt::ToTwips(screen.x()) + (screenWidth - qt::ToTwips(window.width())) / 2;
  const double top = qt::ToTwips(screen.y()) + (screenHeight - qt::ToTwips(window.height())) / 2;
  window.move(number("Left", left), number("Top", top));
  // The screen that it stood on may be gone, or have become too small for it.
  const QScreen* const on = QApplication::screenAt(window.geometry().center());
  const QRect room = on == nullptr ? screen : on->availableVirtualGeometry();
  const bool fits = window.width() <= room.width() && window.height() <= room.height();
  if (fits && on != nullptr) return;
  window.resize(window.size().boundedTo(room.size()));
  window.move(room.center() - window.rect().center());
}

void Save(const QWidget& window, clsSettings& settings, const char* section) {
  const int state = window.isMaximized() ? Maximized : window.isMinimized() ? Minimized : Normal;
  settings.Together([&] {
    const auto save = [&](const char* key, int number) {
      settings.SaveSetting(section, key, fmt::to_string(number));
    };
    save("WindowState", state);
    if (state != Normal) return;
    save("Left", qt::ToTwips(window.pos().x()));
    save("Top", qt::ToTwips(window.pos().y()));
    save("Width", qt::ToTwips(window.width()));
    save("Height", qt::ToTwips(window.height()));
  });
}

}  // namespace sandrel::placement
