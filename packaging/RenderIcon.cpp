// Renders a drawing as a square picture: RenderIcon DRAWING.svg SIZE PICTURE.png

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
  const int size = argc == 4 ? QByteArray(argv[2]).toInt() : 0;
  if (size <= 0) {
    std::fputs("usage: RenderIcon DRAWING.svg SIZE PICTURE.png\n", stderr);
    return 2;
  }
  QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
  QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  {
    QPainter painter(&picture);
    drawing.render(&painter);
  }
  if (drawing.isValid() && picture.save(QString::fromLocal8Bit(argv[3]), "PNG")) return 0;
  std::fprintf(stderr, "%s: no drawing, or %s cannot be written\n", argv[1], argv[3]);
  return 1;
}
