#include "platform/qt/modMarkdown.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>
#include <QVector>
#include <algorithm>

namespace sandrel::qt {
namespace {

// A colour between the two.
QColor Mix(const QColor& from, const QColor& to, double part) {
  const auto between = [part](int a, int b) { return static_cast<int>(a + (b - a) * part); };
  return {between(from.red(), to.red()), between(from.green(), to.green()),
          between(from.blue(), to.blue())};
}

class clsDresser {
 public:
  clsDresser(QTextDocument& document, const MarkdownStyle& style)
      : m_document(document),
        m_style(style),
        m_em(QFontMetrics(style.Font).height()),
        m_ink(style.Palette.color(QPalette::Active, QPalette::Text)),
        m_paper(style.Palette.color(QPalette::Active, QPalette::Base)),
        m_link(style.Palette.color(QPalette::Active, QPalette::Link)) {
    // Palettes of dark desktops often keep the dark blue.
    constexpr int Middle = 128;
    if (m_paper.lightness() < Middle && m_link.lightness() <= Middle)
      m_link = Mix(m_link, m_ink, 0.6);
  }

  void Dress(const QStringList& anchors) {
    // One change: the views lay out the text once, not after each piece.
    QTextCursor whole(&m_document);
    whole.beginEditBlock();
    DressFrames(*m_document.rootFrame());
    qsizetype heading = 0;
    for (QTextBlock block = m_document.begin(); block.isValid(); block = block.next()) {
      if (block.blockFormat().headingLevel() > 0) {
        DressHeading(block, heading < anchors.size() ? anchors[heading] : QString());
        ++heading;
      } else if (block.blockFormat().nonBreakableLines()) {
        DressCode(block);
      } else {
        DressText(block);
      }
    }
    whole.endEditBlock();
  }

 private:
  QBrush Tint(double part) const { return Mix(m_paper, m_ink, part); }

  void DressFrames(const QTextFrame& frame) {
    const QList<QTextFrame*> children = frame.childFrames();
    for (QTextFrame* const child : children) {
      if (auto* const table = qobject_cast<QTextTable*>(child)) DressTable(*table);
      DressFrames(*child);
    }
  }

  void DressTable(QTextTable& table) const {
    QTextTableFormat format = table.format();
    format.setBorder(1);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setBorderBrush(Tint(0.25));
    format.setBorderCollapse(true);
    format.setCellSpacing(0);
    format.setCellPadding(m_em * 0.35);
    format.setTopMargin(m_em * 0.3);
    format.setBottomMargin(m_em * 0.7);
    format.setWidth(QTextLength());
    table.setFormat(format);
    for (int column = 0; column < table.columns(); ++column) {
      QTextTableCell head = table.cellAt(0, column);
      QTextCharFormat shade = head.format();
      shade.setBackground(Tint(0.08));
      head.setFormat(shade);
    }
  }

  void DressHeading(const QTextBlock& block, const QString& anchor) const {
    static constexpr double Sizes[] = {1.7, 1.35, 1.12, 1.0};
    const int level = block.blockFormat().headingLevel();
    QTextCursor cursor(block);
    QTextBlockFormat room = block.blockFormat();
    room.setTopMargin(block.blockNumber() == 0 ? 0 : m_em * (level == 2 ? 1.5 : 1.1));
    room.setBottomMargin(m_em * 0.45);
    cursor.setBlockFormat(room);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    QTextCharFormat shape;
    shape.setFontPointSize(m_style.Font.pointSizeF() * Sizes[std::min(level, 4) - 1]);
    shape.setFontWeight(QFont::DemiBold);
    if (!anchor.isEmpty()) {
      shape.setAnchor(true);
      shape.setAnchorNames({anchor});
    }
    cursor.setCharFormat(shape);  // the importer's own size would win over one that is merged
  }

  void DressCode(const QTextBlock& block) const {
    QTextCursor cursor(block);
    QTextBlockFormat room = block.blockFormat();
    room.setNonBreakableLines(false);  // a long line would widen the page
    room.setBackground(Tint(0.06));
    room.setTopMargin(0);
    room.setBottomMargin(block.next().blockFormat().nonBreakableLines() ? 0 : m_em * 0.7);
    cursor.setBlockFormat(room);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    cursor.mergeCharFormat(FixedFont());
  }

  void DressText(const QTextBlock& block) const {
    QTextCursor cursor(block);
    QTextBlockFormat room = block.blockFormat();
    // A part of the line's own height would leave a gap below a picture.
    room.setLineHeight(m_em * 0.25, QTextBlockFormat::LineDistanceHeight);
    const bool inTable = cursor.currentTable() != nullptr;
    if (inTable) {
      room.setTopMargin(0);
      room.setBottomMargin(0);
    } else {
      room.setTopMargin(0);
      room.setBottomMargin(m_em * (block.textList() != nullptr ? 0.25 : 0.6));
    }
    cursor.setBlockFormat(room);
    DressPieces(block);
  }

  // Code within a line, links and pictures.
  void DressPieces(const QTextBlock& block) const {
    struct Piece {
      int Start, Length;
      QTextCharFormat Format;
    };
    QVector<Piece> pieces;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
      const QTextFragment part = it.fragment();
      QTextCharFormat format = part.charFormat();
      if (format.isImageFormat()) continue;
      if (format.fontFixedPitch()) {
        QTextCharFormat code = FixedFont();
        code.setBackground(Tint(0.06));
        pieces.push_back({part.position(), part.length(), code});
      } else if (format.isAnchor()) {
        QTextCharFormat link;
        link.setForeground(m_link);
        pieces.push_back({part.position(), part.length(), link});
      }
    }
    for (const Piece& piece : pieces) {
      QTextCursor cursor(&m_document);
      cursor.setPosition(piece.Start);
      cursor.setPosition(piece.Start + piece.Length, QTextCursor::KeepAnchor);
      cursor.mergeCharFormat(piece.Format);
    }
  }

  QTextCharFormat FixedFont() const {
    QTextCharFormat shape;
    shape.setFontFamilies(
        {QFontDatabase::systemFont(QFontDatabase::FixedFont).family(), "monospace"});
    shape.setFontFixedPitch(true);
    shape.setFontPointSize(m_style.Font.pointSizeF() * 0.9);
    return shape;
  }

  QTextDocument& m_document;
  const MarkdownStyle& m_style;
  double m_em;
  QColor m_ink, m_paper, m_link;
};

}  // namespace

void SetMarkdown(QTextDocument& document, const QString& markdown, const QStringList& anchors,
                 const MarkdownStyle& style) {
  document.setDefaultFont(style.Font);
  document.setMarkdown(markdown,
                       QTextDocument::MarkdownFeatures(QTextDocument::MarkdownDialectGitHub |
                                                       QTextDocument::MarkdownNoHTML));
  clsDresser(document, style).Dress(anchors);
}

}  // namespace sandrel::qt
