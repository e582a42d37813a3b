#include "platform/qt/modCellText.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

#include "common/text.h"
#include "platform/qt/modText.h"

namespace sandrel::qt {

QString ShownText(std::string_view text) {
  const std::string_view start = text::Left(text, MostShown);
  QString shown = FromText(start);
  constexpr char16_t Pictures = 0x2400, Delete = 0x7F, LastControl = 0x9F, Ellipsis = 0x2026;
  for (QChar& character : shown) {
    const char16_t unit = character.unicode();
    if (unit == '\n' || unit == '\r' || unit == '\t' || unit == QChar::LineSeparator ||
        unit == QChar::ParagraphSeparator) {
      character = u' ';
    } else if (unit < ' ') {
      character = static_cast<char16_t>(Pictures + unit);
    } else if (unit >= Delete && unit <= LastControl) {
      character = QChar::ReplacementCharacter;
    }
  }
  if (start.size() < text.size()) shown += Ellipsis;
  return shown;
}

void ShowCutTip(const QAbstractItemView& view, const QHelpEvent& event) {
  const QModelIndex index = view.indexAt(event.pos());
  const QRect cell = view.visualRect(index);
  const QRect seen = cell & view.viewport()->rect();
  if (!index.isValid() || view.sizeHintForIndex(index).width() <= seen.width()) {
    QToolTip::hideText();
    return;
  }
  // As HTML, so that a long text wraps and one that looks like HTML doesn't become it.
  const QString text = index.data(Qt::DisplayRole).toString().toHtmlEscaped();
  QToolTip::showText(event.globalPos(), "<p style='white-space:pre-wrap'>" + text + "</p>",
                     view.viewport(), cell);
}

}  // namespace sandrel::qt
