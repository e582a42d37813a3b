// What a cell shows of a text, and the tip that shows a cut one whole.
#pragma once

#include <QString>
#include <string_view>

class QAbstractItemView;
class QHelpEvent;

namespace sandrel::qt {

/// UTF-16 units of a text that a cell and its tip show; a registry value may hold a million.
inline constexpr std::size_t MostShown = 1000;

/// Characters that nobody sees, or that would turn the direction of writing, as visible signs.
QString VisibleText(QString text);

/// The start of a text (UTF-8) in one line: line breaks and tabs are blanks, other control
/// characters their pictures.
QString ShownText(std::string_view text);

/// Answers a tool tip event of the view's viewport: the text of the cell below the mouse, when it
/// doesn't fit.
void ShowCutTip(const QAbstractItemView& view, const QHelpEvent& event);

}  // namespace sandrel::qt
