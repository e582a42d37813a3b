// A page of Markdown to read: links, the way back, zoom, marked words and printing.
#pragma once

#include <QImage>
#include <QStringList>
#include <QTextBrowser>
#include <functional>

namespace sandrel {

struct MarkdownText {
  QString Text;
  QStringList Anchors;  ///< the names of its headings, in order
};

/// Shows texts by name, "01-start.md", as links within them name them.
class clsMarkdownPage final : public QTextBrowser {
 public:
  static constexpr int DefaultZoom = 100, ZoomStep = 10;  // percent

  explicit clsMarkdownPage(QWidget* parent);

  /// What is shown under a name; asked each time it is gone to. To be set before.
  std::function<MarkdownText(const QString& name)> TextOf;
  /// The file of a picture by its name, without folders; empty for none.
  std::function<QByteArray(const QString& name)> PictureOf;
  /// Told of another text or place: "01-start.md#anchor".
  std::function<void(const QString& link)> Shown;
  /// Told of a link that leads out of the texts.
  std::function<void(const QUrl& url)> Left;

  /// Shows a text and marks words in it.
  void Show(const QString& link, const QStringList& marked = {});
  /// Shows the present text anew, at the same place.
  void Renew();

  int Zoom() const { return m_zoom; }  ///< percent
  void SetZoom(int percent);

  /// Asks for a printer, or a file, and prints the text in black on white.
  void Print();

 protected:
  QVariant loadResource(int type, const QUrl& name) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Fill();
  void MarkWords();
  QImage Picture(const QUrl& name, int width, qreal ratio) const;
  QFont TextFont() const;
  int TextWidth() const;

  MarkdownText m_text;  // on show
  QStringList m_marked;
  int m_zoom = DefaultZoom;
  int m_width = 0;  // of the text on show
  bool m_filling = false;
};

}  // namespace sandrel
