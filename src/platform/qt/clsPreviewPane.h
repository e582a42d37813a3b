// The pane in which a preview shows one page at a time.
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <vector>

namespace sandrel {

/// A page's picture, at its own size.
class clsPreviewPage final : public QWidget {
 public:
  explicit clsPreviewPage(QWidget* parent) : QWidget(parent) {}

  /// `shown` is the size on the screen; the image may have more pixels.
  void SetPicture(QImage image, QSize shown);
  const QImage& Picture() const { return m_image; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage m_image;
};

/// Holds the pages "picPreview(0)" and on, each at the same place, and paints the back that the
/// page on show lies on.
class clsPreviewPane final : public QWidget {
 public:
  static constexpr int Margin = 12;  ///< round a page that is larger than the pane

  explicit clsPreviewPane(QWidget* parent);

  /// Makes pages of these pictures, none of them visible; there is always page 0.
  void SetPages(const std::vector<QImage>& pictures, QSize shown);
  int PageCount() const { return static_cast<int>(m_pages.size()); }
  clsPreviewPage& Page(int index) { return *m_pages[static_cast<std::size_t>(index)]; }
  /// Shows this page and hides the others.
  void ShowPage(int index);
  /// Size of all pages.
  QSize PageSize() const { return m_pages.front()->size(); }
  void MovePages(QPoint to);

  std::function<void(QWheelEvent& event)> Wheel;
  std::function<void(QPoint by)> Dragged;  ///< with the mouse

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  std::vector<clsPreviewPage*> m_pages;  // owned by Qt
  QPoint m_mouse;
};

}  // namespace sandrel
