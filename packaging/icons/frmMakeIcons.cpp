// Writes the program's icon at the sizes that desktops ask for, drawn as the program itself draws
// it:
//
//   make-icons FOLDER      FOLDER/sandrel-16.png ...
#include <QImage>
#include <QPainter>
#include <cstdio>

#include "platform/qt/IconPictures.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "Usage: make-icons FOLDER\n");
    return 2;
  }
  for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    sandrel::icons::clsIconCanvas canvas(painter, side, {});
    sandrel::icons::DrawWindow(canvas);
    painter.end();
    const QString path = QString("%1/sandrel-%2.png").arg(argv[1]).arg(side);
    if (!image.save(path)) {
      std::fprintf(stderr, "make-icons: can't write %s\n", qPrintable(path));
      return 1;
    }
  }
  return 0;
}
