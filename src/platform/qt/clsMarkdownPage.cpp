#include "platform/qt/clsMarkdownPage.h"

#include <QAbstractTextDocumentLayout>
#include <QPrintDialog>
#include <QPrinter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QWheelEvent>
#include <algorithm>

#include "platform/qt/modGuard.h"
#include "platform/qt/modMarkdown.h"
#include "platform/qt/modText.h"

namespace sandrel {
namespace {

constexpr const char* Scheme = "text";
constexpr int Margin = 24;  // round the text, pixels
constexpr int LeastZoom = 50, MostZoom = 300;
constexpr double Larger = 1.1;  // a text for reading than those of controls

QPalette PaperPalette() {
  QPalette paper;
  paper.setColor(QPalette::Base, Qt::white);
  paper.setColor(QPalette::Text, Qt::black);
  paper.setColor(QPalette::Link, QColor(0, 70, 150));
  return paper;
}

}  // namespace

clsMarkdownPage::clsMarkdownPage(QWidget* parent) : QTextBrowser(parent) {
  setOpenLinks(false);
  setFrameShape(QFrame::NoFrame);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setLineWrapMode(QTextEdit::FixedPixelWidth);
  document()->setDocumentMargin(Margin);
  qt::Connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) {
    if (url.scheme() == Scheme) {
      m_marked.clear();
      setSource(url, QTextDocument::MarkdownResource);
    } else if (Left) {
      Left(url);
    }
  });
  // The browser has filled itself by its own rules; a jump within the text keeps it.
  qt::Connect(this, &QTextBrowser::sourceChanged, this, [this](const QUrl& url) {
    m_text = TextOf(url.fileName());
    Fill();
    if (url.hasFragment()) scrollToAnchor(url.fragment());
    if (Shown) Shown(url.fileName() + (url.hasFragment() ? "#" + url.fragment() : QString()));
  });
}

void clsMarkdownPage::Show(const QString& link, const QStringList& marked) {
  m_marked = marked;
  const QUrl url(QString(Scheme) + ":/" + link);
  if (url == source()) {
    m_text = TextOf(url.fileName());
    Fill();
    url.hasFragment() ? scrollToAnchor(url.fragment()) : verticalScrollBar()->setValue(0);
    return;
  }
  setSource(url, QTextDocument::MarkdownResource);
}

void clsMarkdownPage::Renew() {
  if (source().isEmpty()) return;
  const int block = cursorForPosition(QPoint(Margin, 0)).blockNumber();
  Fill();
  const QTextBlock shown = document()->findBlockByNumber(block);
  if (block == 0 || !shown.isValid()) return;
  const QRectF place = document()->documentLayout()->blockBoundingRect(shown);
  verticalScrollBar()->setValue(static_cast<int>(place.top()));
}

void clsMarkdownPage::Fill() {
  // A bar that comes or goes resizes the page.
  const QScopedValueRollback filling(m_filling, true);
  m_width = TextWidth();
  setLineWrapColumnOrWidth(m_width);
  qt::SetMarkdown(*document(), m_text.Text, m_text.Anchors, {TextFont(), palette()});
  document()->documentLayout()->documentSize();  // a place can be gone to only when it is laid out
  moveCursor(QTextCursor::Start);  // the text came in before it, and the first show goes to it
  MarkWords();
}

void clsMarkdownPage::MarkWords() {
  QList<ExtraSelection> marks;
  QColor shade = palette().color(QPalette::Active, QPalette::Highlight);
  shade.setAlphaF(0.35F);
  for (const QString& word : m_marked) {
    for (QTextCursor found = document()->find(word); !found.isNull();
         found = document()->find(word, found)) {
      ExtraSelection mark;
      mark.cursor = found;
      mark.format.setBackground(shade);
      marks.push_back(mark);
    }
  }
  setExtraSelections(marks);
}

void clsMarkdownPage::SetZoom(int percent) {
  const int zoom = std::clamp(percent, LeastZoom, MostZoom);
  if (zoom == m_zoom) return;
  m_zoom = zoom;
  Renew();
}

QFont clsMarkdownPage::TextFont() const {
  QFont shown = font();
  shown.setPointSizeF(shown.pointSizeF() * Larger * m_zoom / 100);
  return shown;
}

int clsMarkdownPage::TextWidth() const {
  return std::min(viewport()->width(), qt::ReadableWidth(TextFont()) + 2 * Margin);
}

void clsMarkdownPage::Print() {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(documentTitle());
  QPrintDialog dialog(&printer, window());
  dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
  if (dialog.exec() != QDialog::Accepted) return;
  constexpr int PaperWidth = 600;  // of a picture, pixels of the screen
  QTextDocument paper;
  paper.setResourceProvider([this](const QUrl& name) { return Picture(name, PaperWidth, 2); });
  qt::SetMarkdown(paper, m_text.Text, m_text.Anchors, {font(), PaperPalette()});
  paper.print(&printer);
}

// A picture no wider than the text, as sharp as the screen: the document would scale it roughly.
QImage clsMarkdownPage::Picture(const QUrl& name, int width, qreal ratio) const {
  width = std::max(width, 1);
  QImage picture = QImage::fromData(PictureOf(name.fileName()));
  const int most = static_cast<int>(width * ratio);
  if (picture.width() > most) picture = picture.scaledToWidth(most, Qt::SmoothTransformation);
  if (picture.width() > width) {
    picture.setDevicePixelRatio(static_cast<qreal>(picture.width()) / width);
  }
  return picture;
}

QVariant clsMarkdownPage::loadResource(int type, const QUrl& name) {
  if (type == QTextDocument::ImageResource) {
    return Picture(name, m_width - 2 * Margin, devicePixelRatioF());
  }
  return QByteArray(" ");  // filled when the source has changed
}

void clsMarkdownPage::resizeEvent(QResizeEvent* event) {
  qt::Guard(this, [&] {
    QTextBrowser::resizeEvent(event);
    if (!m_filling && TextWidth() != m_width) Renew();
  });
}

void clsMarkdownPage::changeEvent(QEvent* event) {
  qt::Guard(this, [&] {
    QTextBrowser::changeEvent(event);
    const auto type = event->type();
    if (type == QEvent::PaletteChange || type == QEvent::FontChange) Renew();
  });
}

void clsMarkdownPage::wheelEvent(QWheelEvent* event) {
  qt::Guard(this, [&] {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) return QTextBrowser::wheelEvent(event);
    const int turned = event->angleDelta().y();
    if (turned != 0) SetZoom(m_zoom + (turned > 0 ? ZoomStep : -ZoomStep));
    event->accept();
  });
}

}  // namespace sandrel
