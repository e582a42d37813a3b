#include "platform/qt/clsPreviewPane.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "platform/qt/modGuard.h"

namespace sandrel {

void clsPreviewPage::SetPicture(QImage image, QSize shown) {
  m_image = std::move(image);
  resize(shown);
  update();
}

void clsPreviewPage::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (m_image.isNull()) {
    painter.fillRect(rect(), Qt::white);
  } else {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(rect()), m_image);
  }
}

clsPreviewPane::clsPreviewPane(QWidget* parent) : QWidget(parent) {
  setObjectName("picBack");
  setFocusPolicy(Qt::StrongFocus);
  SetPages({}, QSize(1, 1));
}

void clsPreviewPane::SetPages(const std::vector<QImage>& pictures, QSize shown) {
  const std::size_t count = std::max<std::size_t>(1, pictures.size());
  while (m_pages.size() > count) {
    delete m_pages.back();
    m_pages.pop_back();
  }
  while (m_pages.size() < count) {
    auto* const page = new clsPreviewPage(this);
    page->setObjectName(QString("picPreview(%1)").arg(m_pages.size()));
    m_pages.push_back(page);
  }
  for (std::size_t i = 0; i < count; ++i) {
    m_pages[i]->hide();
    m_pages[i]->SetPicture(i < pictures.size() ? pictures[i] : QImage(), shown);
  }
}

void clsPreviewPane::ShowPage(int index) {
  for (int i = 0; i < PageCount(); ++i) Page(i).setVisible(i == index);
  update();
}

void clsPreviewPane::MovePages(QPoint to) {
  for (clsPreviewPage* const page : m_pages) page->move(to);
  update();
}

// Paper stays white in every palette; what is round it follows the window.
void clsPreviewPane::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const bool dark = palette().window().color().lightness() < 128;
  painter.fillRect(rect(), dark ? QColor(0x2a, 0x2d, 0x32) : QColor(0xa6, 0xab, 0xb1));
  constexpr int Shadow = 4;
  const QRect sheet(m_pages.front()->pos(), PageSize());
  for (int i = Shadow; i > 0; --i) {
    painter.fillRect(sheet.adjusted(2 - i, 2 - i, 2 + i, 2 + i), QColor(0, 0, 0, 28));
  }
  painter.fillRect(sheet.adjusted(-1, -1, 1, 1), QColor(0x50, 0x54, 0x5a));
}

void clsPreviewPane::wheelEvent(QWheelEvent* event) {
  qt::Guard(this, [&] {
    if (Wheel) Wheel(*event);
    event->accept();
  });
}

void clsPreviewPane::mousePressEvent(QMouseEvent* event) {
  qt::Guard(this, [&] { m_mouse = event->pos(); });
}

void clsPreviewPane::mouseMoveEvent(QMouseEvent* event) {
  qt::Guard(this, [&] {
    if ((event->buttons() & Qt::LeftButton) == 0) return;
    const QPoint by = event->pos() - std::exchange(m_mouse, event->pos());
    if (Dragged) Dragged(by);
  });
}

}  // namespace sandrel
