#include "platform/qt/clsCellDelegate.h"

#include <algorithm>

namespace sandrel {
namespace {

constexpr int LeastHeight = 20;  // a picture of 16 pixels and two on either side

}  // namespace

// Many styles give the unfocused selection the colour of the focused one.
void ShowUnfocused(QStyleOptionViewItem& option) {
  option.state.setFlag(QStyle::State_Active, false);
  QPalette& palette = option.palette;
  const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
  if (palette.color(QPalette::Inactive, QPalette::Highlight) != highlight) return;
  const QColor base = palette.color(QPalette::Base), ink = palette.color(QPalette::Text);
  const auto mix = [](int a, int b) { return (a * 4 + b) / 5; };
  palette.setColor(QPalette::Inactive, QPalette::Highlight,
                   QColor(mix(base.red(), ink.red()), mix(base.green(), ink.green()),
                          mix(base.blue(), ink.blue())));
  palette.setColor(QPalette::Inactive, QPalette::HighlightedText, ink);
}

QSize clsCellDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
  const QSize size = QStyledItemDelegate::sizeHint(option, index);
  return {size.width(), std::max(size.height() + 2, LeastHeight)};
}

}  // namespace sandrel
