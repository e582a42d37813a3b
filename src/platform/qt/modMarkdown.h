// Markdown as a document that is pleasant to read: on the screen by the colours of a palette, or on
// paper.
#pragma once

#include <QFont>
#include <QPalette>
#include <QString>
#include <QStringList>

class QTextDocument;

namespace sandrel::qt {

struct MarkdownStyle {
  QFont Font;
  QPalette Palette;
};

/// Fills `document` with a text. Its headings get the names `anchors`, in their order. Pictures
/// are to come from the document's resources.
void SetMarkdown(QTextDocument& document, const QString& markdown, const QStringList& anchors,
                 const MarkdownStyle& style);

}  // namespace sandrel::qt
