#include "app/transfers/TransferDelegate.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QWidget>
#include <algorithm>

#include "app/shared/Icons.h"
#include "app/transfers/MyStatusBar.h"
#include "app/transfers/TransferModel.h"
#include "app/transfers/TransferTexts.h"
#include "util/GetTruncatedString.h"

namespace corvane {
namespace {

constexpr int kMargin = 5;
constexpr int kBarHeight = MyStatusBar::kHeight;
constexpr int kIconSize = 16;
constexpr int kTargetWidth = 300;

void DrawBackground(QPainter& painter, const QStyleOptionViewItem& option) {
  const QRect& frame = option.rect;
  if (option.state.testFlag(QStyle::State_Selected)) {
    painter.fillRect(frame, option.palette.brush(QPalette::Highlight));
  }
  painter.setPen(option.palette.color(QPalette::Mid));
  painter.drawLine(frame.left(), frame.bottom(), frame.right(), frame.bottom());
}

void DrawFocus(QPainter& painter, const QStyleOptionViewItem& option) {
  if (!option.state.testFlag(QStyle::State_HasFocus) || option.widget == nullptr) return;
  QStyleOptionFocusRect focus;
  focus.QStyleOption::operator=(option);
  focus.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
  option.widget->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, option.widget);
}

/// Draws left and right text on one line; the right one and the left one's tail are whole, the rest
/// gives way.
void DrawLine(QPainter& painter, const QRect& line, const QString& left, const QString& right,
              const QString& tail = {}) {
  const QFontMetrics metrics = painter.fontMetrics();
  const int taken = right.isEmpty() ? 0 : metrics.horizontalAdvance(right) + 2 * kMargin;
  const int room = line.width() - taken - metrics.horizontalAdvance(tail);
  painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, right);
  painter.drawText(line.adjusted(0, 0, -taken, 0), Qt::AlignLeft | Qt::AlignVCenter,
                   metrics.elidedText(left, Qt::ElideRight, room) + tail);
}

}  // namespace

QSize TransferDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& /*index*/) const {
  const int texts = 3 * option.fontMetrics.height() + kBarHeight + 3 * kMargin;
  return {200, std::max(kRowHeight, texts)};
}

QString TransferDelegate::Truncated(const QString& text, const QFont& font, int width) const {
  constexpr int kMost = 256;
  if (truncated_.size() > kMost || font != truncatedIn_) truncated_.clear();
  truncatedIn_ = font;
  const auto known = truncated_.find({text, width});
  if (known != truncated_.end()) return known->second;
  const QFontMetricsF metrics(font);
  const auto measure = [&](std::string_view part) {
    return static_cast<float>(
        metrics.horizontalAdvance(QString::fromUtf8(part.data(), std::ssize(part))));
  };
  const std::string cut = GetTruncatedString(text.toStdString(), measure, static_cast<float>(width),
                                             Truncation::Middle);
  return truncated_.insert_or_assign({text, width}, QString::fromStdString(cut)).first->second;
}

QRect TransferDelegate::BarArea(const QRect& row) {
  return {row.left() + kMargin, row.bottom() - kMargin - kBarHeight, row.width() - 2 * kMargin - 1,
          kBarHeight};
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
  const QRect bar = BarArea(option.rect);
  QRect texts = option.rect.adjusted(kMargin, kMargin - 1, -kMargin, 0);
  texts.setBottom(bar.top() - 2);
  if (region_.intersects(texts)) PaintTexts(*painter, option, texts, item);
  MyStatusBar::Draw(*painter, option.palette, bar, item);
  DrawFocus(*painter, option);
  painter->restore();
}

void TransferDelegate::PaintTexts(QPainter& painter, const QStyleOptionViewItem& option,
                                  const QRect& area, const TransferItem& item) const {
  const TransferTexts texts(item);
  const int height = area.height() / 3;
  QRect line(area.left(), area.top(), area.width(), height);
  DrawLine(painter, line, texts.ServerLine(), texts.RateText());

  line.translate(0, height);
  const int room = std::max(kTargetWidth, line.width() - kIconSize - 2 * kMargin) -
                   option.fontMetrics.horizontalAdvance(texts.TargetTitle());
  DrawLine(painter, line, texts.TargetTitle() + Truncated(texts.TargetPath(), option.font, room),
           {});

  line.translate(0, height);
  if (item.Failed()) {
    AlertIcon().paint(
        &painter, QRect(line.left(), line.top() + (height - kIconSize) / 2, kIconSize, kIconSize));
    line.setLeft(line.left() + kIconSize + kMargin);
    DrawLine(painter, line, texts.FailureLine(), texts.TotalText());
  } else {
    DrawLine(painter, line, texts.Label(), texts.TotalText(), texts.CountText());
  }
}

}  // namespace corvane
