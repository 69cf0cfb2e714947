#include "app/TransferDelegate.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

#include "app/Icons.h"
#include "app/TransferModel.h"
#include "util/GetTruncatedString.h"

namespace corvane {
namespace {

constexpr int kMargin = 5;
constexpr int kBarHeight = 10;
constexpr int kIconSize = 16;
constexpr int kTargetWidth = 300;

QString Truncated(const QString& text, const QFont& font, int width) {
  const QFontMetricsF metrics(font);
  const auto measure = [&](std::string_view part) {
    return static_cast<float>(
        metrics.horizontalAdvance(QString::fromUtf8(part.data(), std::ssize(part))));
  };
  return QString::fromStdString(GetTruncatedString(text.toStdString(), measure,
                                                   static_cast<float>(width), Truncation::Middle));
}

void DrawBackground(QPainter& painter, const QStyleOptionViewItem& option) {
  const QRect& frame = option.rect;
  if (option.state.testFlag(QStyle::State_Selected)) {
    painter.fillRect(frame, option.palette.brush(QPalette::Highlight));
  }
  painter.setPen(option.palette.color(QPalette::Mid));
  painter.drawLine(frame.left(), frame.bottom(), frame.right(), frame.bottom());
}

/// Draws left and right text on one line; the right one is whole, the left one gives way.
void DrawLine(QPainter& painter, const QRect& line, const QString& left, const QString& right) {
  const QFontMetrics metrics = painter.fontMetrics();
  const int taken = right.isEmpty() ? 0 : metrics.horizontalAdvance(right) + 2 * kMargin;
  painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, right);
  painter.drawText(line.adjusted(0, 0, -taken, 0), Qt::AlignLeft | Qt::AlignVCenter,
                   metrics.elidedText(left, Qt::ElideRight, line.width() - taken));
}

void DrawBar(QPainter& painter, const QStyleOptionViewItem& option, const QRect& bar,
             const TransferItem& item) {
  painter.fillRect(bar, option.palette.brush(QPalette::Base));
  QRect filled = bar.adjusted(1, 1, 0, 0);
  filled.setWidth(static_cast<int>(item.Fraction() * (bar.width() - 1)));
  // A transfer that failed before its first byte still shows its colour.
  if (item.Failed() && filled.width() < kBarHeight) filled.setWidth(kBarHeight);
  painter.fillRect(filled, TransferDelegate::BarColour(item));
  painter.setPen(option.palette.color(QPalette::Mid));
  painter.drawRect(bar);
}

}  // namespace

QColor TransferDelegate::BarColour(const TransferItem& item) {
  if (item.Running()) return {0, 152, 51};
  return item.Failed() ? QColor(228, 0, 0) : QColor(0, 0, 154);
}

QSize TransferDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& /*index*/) const {
  const int texts = 3 * option.fontMetrics.height() + kBarHeight + 3 * kMargin;
  return {200, std::max(kRowHeight, texts)};
}

void TransferDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
  const auto* model = qobject_cast<const TransferModel*>(index.model());
  if (model == nullptr) return;
  const TransferItem& item = model->At(index.row());
  const bool selected = option.state.testFlag(QStyle::State_Selected);

  painter->save();
  painter->setFont(option.font);
  DrawBackground(*painter, option);
  painter->setPen(
      option.palette.color(selected ? QPalette::HighlightedText : QPalette::WindowText));

  const QRect area = option.rect.adjusted(kMargin, kMargin - 1, -kMargin, -kMargin);
  const int height = (area.height() - kBarHeight - 2) / 3;
  QRect line(area.left(), area.top(), area.width(), height);
  DrawLine(*painter, line, item.ServerLine(), item.RateText());

  line.translate(0, height);
  const int room = std::max(kTargetWidth, line.width() - kIconSize - 2 * kMargin) -
                   option.fontMetrics.horizontalAdvance(item.TargetTitle());
  DrawLine(*painter, line, item.TargetTitle() + Truncated(item.TargetPath(), option.font, room),
           {});

  line.translate(0, height);
  if (item.Failed()) {
    AlertIcon().paint(
        painter, QRect(line.left(), line.top() + (height - kIconSize) / 2, kIconSize, kIconSize));
    line.setLeft(line.left() + kIconSize + kMargin);
    DrawLine(*painter, line, item.FailureLine(), item.TotalText());
  } else {
    DrawLine(*painter, line, item.Label(), item.TotalText());
  }

  DrawBar(*painter, option,
          QRect(area.left(), area.bottom() - kBarHeight, area.width() - 1, kBarHeight), item);
  painter->restore();
}

}  // namespace corvane
