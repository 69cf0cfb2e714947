#include "app/browser/PictureView.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace corvane {
namespace {

constexpr qint64 kMostPoints = 100'000'000;
constexpr int kLargestSide = 4096;  // of what is kept

}  // namespace

PictureView::PictureView(QImage picture, QWidget* parent)
    : QWidget(parent), picture_(std::move(picture)) {
  setObjectName("Picture");
  setAccessibleName(tr("Picture"));
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(200, 200);
}

PictureView::Read PictureView::From(const std::string& bytes) {
  QByteArray held = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&held);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  Read read;
  read.size = reader.size();
  if (!read.size.isValid()) return read;
  read.tooLarge = qint64{read.size.width()} * read.size.height() > kMostPoints;
  if (read.tooLarge) return read;
  if (std::max(read.size.width(), read.size.height()) > kLargestSide)
    reader.setScaledSize(read.size.scaled(kLargestSide, kLargestSide, Qt::KeepAspectRatio));
  read.picture = reader.read();
  return read;
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  QSize shown = picture_.size();
  if (shown.width() > width() || shown.height() > height())
    shown.scale(size(), Qt::KeepAspectRatio);
  QRect place(QPoint(), shown);
  place.moveCenter(rect().center());
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(place, picture_);
}

}  // namespace corvane
