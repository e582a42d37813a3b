#include "platform/qt/modCellText.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>
#include <utility>

#include "common/text.h"
#include "platform/qt/modText.h"

namespace sandrel::qt {

QString VisibleText(QString text) {
  constexpr char16_t Pictures = 0x2400;
  for (QChar& character : text) {
    const char16_t unit = character.unicode();
    if (unit == '\n' || unit == '\r' || unit == '\t' || !text::IsControl(unit)) continue;
    character = unit < ' ' ? QChar(static_cast<char16_t>(Pictures + unit))
                           : QChar(QChar::ReplacementCharacter);
  }
  return text;
}

QString ShownText(std::string_view text) {
  const std::string_view start = text::Left(text, MostShown);
  QString shown = FromText(start);
  constexpr char16_t Ellipsis = 0x2026;
  for (QChar& character : shown) {
    const char16_t unit = character.unicode();
    if (unit == '\n' || unit == '\r' || unit == '\t' || unit == QChar::LineSeparator ||
        unit == QChar::ParagraphSeparator) {
      character = u' ';
    }
  }
  shown = VisibleText(std::move(shown));
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
