#include "app/transfers/TransferRow.h"

#include <QGuiApplication>
#include <QPalette>
#include <algorithm>

#include "app/shared/Style.h"
#include "app/transfers/TransferItem.h"
#include "app/transfers/TransferTexts.h"

namespace corvane {
namespace {

constexpr int kSpace = 28;  // in a row, apart from its two lines of text
constexpr int kSignLeft = 12;
constexpr int kSign = 24;
constexpr int kTextLeft = 48;
constexpr int kTextRight = 76;
constexpr int kSlot = 28;
constexpr int kSlotRight = 12;
constexpr int kBar = 4;
constexpr int kBetween = 4;
constexpr int kArrow = 18;
constexpr int kNote = 28;
constexpr int kBelowNotes = 8;

int BaseHeight(const QFontMetrics& metrics) {
  return kSpace + 2 * metrics.height();
}

}  // namespace

TransferRow::TransferRow(const TransferItem& item, const QRect& rect, const QFontMetrics& metrics)
    : item_(item),
      rect_(rect),
      metrics_(metrics),
      bar_(Style::InForce().BarOf(item.State(), QGuiApplication::palette()).isValid()) {}

int TransferRow::HeightOf(const TransferItem& item, const QFontMetrics& metrics) {
  const int notes = item.IsOpen() ? TransferTexts(item).CountNoteLines() * kNote + kBelowNotes : 0;
  return BaseHeight(metrics) + notes;
}

TransferAction TransferRow::CrossOf(const TransferItem& item) {
  return item.HasEnded() ? TransferAction::Remove : TransferAction::Cancel;
}

TransferAction TransferRow::BesideOf(const TransferItem& item) {
  switch (item.Stands()) {
    case RowState::Running: return TransferAction::Pause;
    case RowState::Paused: return TransferAction::Resume;
    case RowState::Done: return item.IsDownload() ? TransferAction::Reveal : TransferAction::None;
    default: return TransferAction::None;
  }
}

TransferAction TransferRow::LinkOf(const TransferItem& item) {
  if (item.Failed()) return TransferAction::Retry;
  return item.Stands() == RowState::Again ? TransferAction::TryNow : TransferAction::None;
}

TransferAction TransferRow::MainOf(const TransferItem& item) {
  if (const TransferAction link = LinkOf(item); link != TransferAction::None) return link;
  const TransferAction beside = BesideOf(item);
  if (beside == TransferAction::Resume || beside == TransferAction::Reveal) return beside;
  return item.HasNotes() ? TransferAction::Toggle : TransferAction::None;
}

QRect TransferRow::Sign() const {
  return {rect_.left() + kSignLeft, rect_.top() + (BaseHeight(metrics_) - kSign) / 2, kSign, kSign};
}

QRect TransferRow::Line(int y) const {
  return {rect_.left() + kTextLeft, rect_.top() + y,
          std::max(0, rect_.width() - kTextLeft - kTextRight), metrics_.height()};
}

QRect TransferRow::Bar() const {
  QRect bar = First();
  bar.moveTop(bar.bottom() + 1 + kBetween);
  bar.setHeight(kBar);
  return bar;
}

QRect TransferRow::Second() const {
  const int below = bar_ ? 2 * kBetween + kBar - 2 : kBetween;
  QRect line = First();
  line.translate(0, line.height() + below);
  return line;
}

QRect TransferRow::Arrow() const {
  if (!item_.HasNotes() || !item_.HasEnded()) return {};
  QRect arrow = Second();
  arrow.setWidth(kArrow);
  return arrow;
}

QRect TransferRow::Note(int line) const {
  return {rect_.left() + kTextLeft, rect_.top() + BaseHeight(metrics_) + line * kNote - kBetween,
          std::max(0, rect_.width() - kTextLeft - kSlotRight), kNote};
}

QRect TransferRow::Link() const {
  if (LinkOf(item_) == TransferAction::None) return {};
  QRect link = Second();
  link.setLeft(link.right() + 1 - metrics_.horizontalAdvance(LinkText()));
  return link;
}

QString TransferRow::LinkText() const {
  return LinkOf(item_) == TransferAction::TryNow ? TransferItem::tr("Try Now")
                                                 : TransferItem::tr("Retry");
}

QRect TransferRow::Slot(int place) const {
  return {rect_.right() + 1 - kSlotRight - (place + 1) * kSlot,
          rect_.top() + (BaseHeight(metrics_) - kSlot) / 2, kSlot, kSlot};
}

TransferAction TransferRow::ActionAt(const QPoint& point) const {
  if (Slot(0).contains(point)) return CrossOf(item_);
  if (Slot(1).contains(point)) return BesideOf(item_);
  if (Link().contains(point)) return LinkOf(item_);
  return Arrow().contains(point) ? TransferAction::Toggle : TransferAction::None;
}

}  // namespace corvane
