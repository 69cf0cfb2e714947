#include "app/program/About.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QPainter>

#include "app/shared/Frames.h"
#include "app/shared/Icons.h"
#include "app/shared/Windows.h"

namespace corvane {
namespace {

constexpr QLatin1String kVersion(CORVANE_VERSION);
constexpr QSize kSize{364, 185};
constexpr QPoint kPlace{120, 120};

// Where things stand in the picture, in its own coordinates.
constexpr QRectF kMark{24, 34, 112, 112};
constexpr QPointF kPurposePlace{160, 104};
constexpr QPointF kVersionPlace{160, 158};
constexpr qreal kTextWidth = 188;
constexpr qreal kTextSize = 10;

/// `font` at the window's text size, smaller where `text` would not have the room.
QFont Fitted(QFont font, const QString& text) {
  font.setPointSizeF(kTextSize);
  const qreal width = QFontMetricsF(font).horizontalAdvance(text);
  if (width > kTextWidth) font.setPointSizeF(kTextSize * kTextWidth / width);
  return font;
}

void DrawLine(QPainter& painter, const QPointF& baseline, const QString& text) {
  painter.save();
  painter.setFont(Fitted(painter.font(), text));
  painter.drawText(baseline, text);
  painter.restore();
}

}  // namespace

AboutView::AboutView(QWidget* parent)
    : QWidget(parent), mark_(PictureFile(QStringLiteral("corvane"), false)) {
  setObjectName("AboutView");
  setAccessibleName(tr("Corvane, version %1").arg(kVersion));
  setAccessibleDescription(tr("An FTP client for the desktop"));
  // Screen readers speak what has the focus.
  setFocusPolicy(Qt::TabFocus);
  LoadPicture();
}

void AboutView::LoadPicture() {
  picture_.load(PictureFile(QStringLiteral("about_box"), IsDark(palette())));
}

void AboutView::paintEvent(QPaintEvent* /*event*/) {
  if (!picture_.isValid()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  picture_.render(&painter, rect());
  mark_.render(&painter, kMark);
  painter.setPen(palette().color(QPalette::WindowText));
  DrawLine(painter, kPurposePlace, tr("An FTP client for the desktop"));
  DrawLine(painter, kVersionPlace, tr("version %1").arg(kVersion));
}

void AboutView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) LoadPicture();
  QWidget::changeEvent(event);
}

About::About(QWidget* parent) : QWidget(parent, kFixedWindow) {
  setWindowTitle(tr("About Corvane"));
  setFixedSize(kSize);
  move(Frames::OnScreen(QRect(kPlace, kSize)).topLeft());
  auto* view = new AboutView(this);
  view->resize(kSize);
  view->setFocus();
  AddCloseKeys(this);
}

}  // namespace corvane
