#include "app/shared/Symbols.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

#include "app/shared/Icons.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kGrid = 16;

// Of a directory's picture the inside is tinted.
QColor AreaOf(const QColor& line) {
  const QPalette palette = QGuiApplication::palette();
  if (line == palette.color(QPalette::HighlightedText)) return Qt::transparent;
  return Mixed(palette.color(QPalette::Highlight), palette.color(QPalette::Base),
               IsDark(palette) ? 40 : 22);
}

// Lines are as thick as the size wants it, not as the drawing grows.
QByteArray Drawing(const QString& name, double size, const QColor& color) {
  QFile file(PictureFile(QStringLiteral("symbols/") + name, false));
  if (!file.open(QIODevice::ReadOnly)) return {};
  const double pixels = size < 28 ? 1.5 : 2;
  const QColor area = AreaOf(color);
  return file.readAll()
      .replace("currentColor", color.name().toLatin1())
      .replace("currentArea", area.alpha() == 0 ? "none" : area.name().toLatin1())
      .replace("stroke-width=\"1.5\"",
               "stroke-width=\"" + QByteArray::number(pixels * kGrid / size) + '"');
}

QPixmap Rendered(const QString& name, double size, double scale, const QColor& color) {
  const QString key = QStringLiteral("symbol %1 %2 %3 %4 %5")
                          .arg(name)
                          .arg(size)
                          .arg(scale)
                          .arg(color.rgba())
                          .arg(AreaOf(color).rgba());
  QPixmap pixmap;
  if (QPixmapCache::find(key, &pixmap)) return pixmap;
  const auto pixels = static_cast<int>(std::lround(size * scale));
  pixmap = QPixmap(pixels, pixels);
  pixmap.fill(Qt::transparent);
  QSvgRenderer drawing(Drawing(name, size, color));
  QPainter painter(&pixmap);
  drawing.render(&painter);
  painter.end();
  pixmap.setDevicePixelRatio(scale);
  QPixmapCache::insert(key, pixmap);
  return pixmap;
}

QColor ColorFor(const QString& name, std::optional<Tone> tone, QIcon::Mode mode) {
  const QPalette palette = QGuiApplication::palette();
  switch (mode) {
    case QIcon::Disabled: return palette.color(QPalette::Disabled, QPalette::WindowText);
    case QIcon::Selected: return palette.color(QPalette::HighlightedText);
    default: break;
  }
  return tone ? ToneOf(palette, *tone) : EntryColor(palette, name.toLatin1().constData());
}

/// Draws anew at each size, and in the colours that hold when it is drawn.
class SymbolEngine : public QIconEngine {
 public:
  SymbolEngine(QString name, std::optional<Tone> tone) : name_(std::move(name)), tone_(tone) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
             QIcon::State /*state*/) override {
    PaintSymbol(*painter, rect, name_.toLatin1().constData(), ColorFor(name_, tone_, mode));
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return scaledPixmap(size, mode, state, 1);
  }
  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/,
                       qreal scale) override {
    const double side = std::min(size.width(), size.height()) / scale;
    return Rendered(name_, side, scale, ColorFor(name_, tone_, mode));
  }
  [[nodiscard]] QIconEngine* clone() const override { return new SymbolEngine(name_, tone_); }

 private:
  QString name_;
  std::optional<Tone> tone_;
};

}  // namespace

QIcon Symbol(const char* name) {
  return QIcon(new SymbolEngine(QString::fromLatin1(name), {}));
}

QIcon Symbol(const char* name, Tone tone) {
  return QIcon(new SymbolEngine(QString::fromLatin1(name), tone));
}

void PaintSymbol(QPainter& painter, const QRectF& rect, const char* name, const QColor& color) {
  const double side = std::min(rect.width(), rect.height());
  const double scale = painter.device() == nullptr ? 1 : painter.device()->devicePixelRatioF();
  const QPointF corner(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
  painter.drawPixmap(corner, Rendered(QString::fromLatin1(name), side, scale, color));
}

QColor EntryColor(const QPalette& palette, const char* name) {
  if (std::string_view(name) == "folder") return ToneOf(palette, Tone::Running);
  return palette.color(QPalette::Text);
}

}  // namespace corvane
