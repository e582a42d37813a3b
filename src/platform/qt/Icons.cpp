#include "platform/qt/Icons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/qt/IconPictures.h"

namespace sandrel::icons {
namespace {

// Draws a picture at each size and look that is asked for once, and keeps the pixmap: a list paints
// the same few thousands of times.
class clsIconEngine : public QIconEngine {
 public:
  explicit clsIconEngine(Picture picture) : m_picture(picture) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return scaledPixmap(size, mode, state, 1);
  }
  /// `size` is in device pixels, and so is the pixmap's.
  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                       qreal scale) override;
  QIconEngine* clone() const override { return new clsIconEngine(*this); }
  QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override;

 private:
  struct Drawn {
    QSize Size;
    qreal Ratio;
    Look As;
    bool Selected;
    QPixmap Pixmap;
  };

  QPixmap Draw(const QSize& size, Look look) const;

  Picture m_picture;
  std::vector<Drawn> m_drawn;
};

// More than a program shows at once; a window dragged through many ratios doesn't pile them up.
constexpr std::size_t MostDrawn = 16;

Look LookOf(QIcon::Mode mode) {
  const QColor window = QApplication::palette().color(QPalette::Window);
  return {window.lightness() < 128, mode == QIcon::Disabled};
}

// On the strong colour of a selection a picture stands out by a light rim; one for dark windows is
// light enough.
QPixmap WithRim(const QPixmap& picture) {
  const int width = std::max(1, picture.width() / 16);
  QPixmap rim = picture;
  QPainter shape(&rim);
  shape.setCompositionMode(QPainter::CompositionMode_SourceIn);
  shape.fillRect(rim.rect(), QColor(255, 255, 255, 190));
  shape.end();
  QPixmap whole(picture.size());
  whole.fill(Qt::transparent);
  QPainter painter(&whole);
  for (const int x : {-width, 0, width}) {
    for (const int y : {-width, 0, width}) painter.drawPixmap(x, y, rim);
  }
  painter.drawPixmap(0, 0, picture);
  return whole;
}

void clsIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
                          QIcon::State state) {
  const qreal ratio = painter->device()->devicePixelRatio();
  const QPixmap picture = scaledPixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state, ratio);
  // At a broken ratio most positions lie between pixels, where the picture would be blurred.
  const QTransform toDevice = painter->deviceTransform();
  QPointF corner = rect.topLeft();
  if (toDevice.type() <= QTransform::TxScale) {
    corner = toDevice.inverted().map(QPointF(toDevice.map(corner).toPoint()));
  }
  painter->drawPixmap(corner, picture);
}

QPixmap clsIconEngine::scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/,
                                    qreal scale) {
  const Look look = LookOf(mode);
  const bool selected = mode == QIcon::Selected && !look.Dark;
  const auto known = std::find_if(m_drawn.begin(), m_drawn.end(), [&](const Drawn& drawn) {
    return drawn.Size == size && drawn.Ratio == scale && drawn.As == look &&
           drawn.Selected == selected;
  });
  if (known != m_drawn.end()) return known->Pixmap;

  QPixmap pixmap = selected ? WithRim(Draw(size, look)) : Draw(size, look);
  pixmap.setDevicePixelRatio(scale);
  if (m_drawn.size() == MostDrawn) m_drawn.erase(m_drawn.begin());
  m_drawn.push_back({size, scale, look, selected, pixmap});
  return pixmap;
}

QPixmap clsIconEngine::Draw(const QSize& size, Look look) const {
  QPixmap pixmap(size);
  pixmap.fill(Qt::transparent);
  const int side = std::min(size.width(), size.height());
  if (side <= 0) return pixmap;
  QPainter painter(&pixmap);
  painter.setViewport((size.width() - side) / 2, (size.height() - side) / 2, side, side);
  painter.setWindow(0, 0, side, side);
  clsIconCanvas canvas(painter, side, look);
  m_picture(canvas);
  return pixmap;
}

QList<QSize> clsIconEngine::availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) {
  QList<QSize> sizes;
  for (const int side : {16, 20, 24, 32, 48, 64, 128, 256}) sizes << QSize(side, side);
  return sizes;
}

// Never destroyed: pixmaps must not outlive the application object, and the last of them are freed
// with the process anyway.
using Shared = std::unordered_map<std::string, QIcon>;

QIcon ShareOf(Shared& shared, std::string_view key, Picture (*find)(std::string_view)) {
  const std::string name(key);
  if (const auto known = shared.find(name); known != shared.end()) return known->second;
  const Picture picture = find(key);
  if (picture == nullptr) return {};
  return shared.emplace(name, QIcon(new clsIconEngine(picture))).first->second;
}

}  // namespace

QIcon Image(std::string_view key) {
  static Shared& shared = *new Shared;
  return ShareOf(shared, key, FindImagePicture);
}

QIcon Tool(std::string_view key) {
  static Shared& shared = *new Shared;
  return ShareOf(shared, key, FindToolPicture);
}

QIcon Window() {
  static QIcon& window = *new QIcon(new clsIconEngine(DrawWindow));
  return window;
}

}  // namespace sandrel::icons
