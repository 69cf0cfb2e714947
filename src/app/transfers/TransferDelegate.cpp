#include "app/transfers/TransferDelegate.h"

#include <QPainter>

#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"
#include "app/transfers/MyStatusBar.h"
#include "app/transfers/TransferModel.h"
#include "app/transfers/TransferTexts.h"

namespace corvane {
namespace {

constexpr int kGap = 8;
constexpr int kSymbol = 16;
constexpr int kNoteSign = 18;

struct Sign {
  const char* symbol;
  Tone tone;
};

Sign SignOf(const TransferItem& item) {
  switch (item.State()) {
    case TransferState::Waiting: return {"clock", Tone::Secondary};
    case TransferState::Paused: return {"pause", Tone::Secondary};
    case TransferState::Again: return {"refresh", Tone::Caution};
    case TransferState::Running: return {item.IsDownload() ? "download" : "upload", Tone::Running};
    case TransferState::Failed: return {"cross-circle", Tone::Bad};
    case TransferState::Partly: return {"triangle", Tone::Bad};
    case TransferState::Cancelled: return {"dash-circle", Tone::Secondary};
    case TransferState::Done: break;
  }
  return {"tick-circle", Tone::Good};
}

bool HasFailed(const TransferItem& item) {
  return item.State() == TransferState::Failed || item.State() == TransferState::Partly;
}

}  // namespace

/// What the parts of one row are painted with.
struct TransferDelegate::Brush {
  QPainter& painter;
  const QStyleOptionViewItem& option;
  const TransferItem& item;
  TransferRow row;
  bool selected;

  /// On a selection everything has its colour.
  [[nodiscard]] QColor ColorOf(const QColor& color) const {
    return selected ? option.palette.color(QPalette::HighlightedText) : color;
  }
  [[nodiscard]] QColor ColorOf(Tone tone) const { return ColorOf(ToneOf(option.palette, tone)); }
  [[nodiscard]] QColor Text() const { return ColorOf(option.palette.color(QPalette::Text)); }

  /// The right text is whole, the left one gives way: a name in its middle.
  void DrawLine(QRect line, const QString& left, const QColor& color, const QString& right,
                const QFont& font, Qt::TextElideMode elide = Qt::ElideRight) const {
    painter.setFont(option.font);
    painter.setPen(ColorOf(Tone::Secondary));
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, right);
    if (!right.isEmpty()) {
      line.setRight(line.right() - option.fontMetrics.horizontalAdvance(right) - kGap);
    }
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(left, elide, line.width()));
  }
};

QSize TransferDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
  const auto* model = qobject_cast<const TransferModel*>(index.model());
  if (model == nullptr) return {};
  return {200, TransferRow::HeightOf(model->At(index.row()), option.fontMetrics)};
}

void TransferDelegate::SetHovered(const QModelIndex& index, TransferAction action) {
  hoveredRow_ = index;
  hovered_ = action;
}

void TransferDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
  const auto* model = qobject_cast<const TransferModel*>(index.model());
  if (model == nullptr) return;
  const TransferItem& item = model->At(index.row());
  const TransferRow row(item, option.rect, option.fontMetrics);
  const Brush brush{*painter, option, item, row, option.state.testFlag(QStyle::State_Selected)};
  painter->save();
  if (brush.selected) {
    painter->fillRect(option.rect, option.palette.brush(QPalette::Highlight));
  } else if (option.state.testFlag(QStyle::State_MouseOver)) {
    painter->fillRect(option.rect, ToneOf(option.palette, Tone::Hover));
  }
  painter->fillRect(QRect(option.rect.bottomLeft(), QSize(option.rect.width(), 1)),
                    ToneOf(option.palette, Tone::Line));
  MyStatusBar::Draw(*painter, option.palette, row.Bar(), item, brush.selected);
  const QRect texts = row.First() | row.Second() | row.Sign() | row.Slot(0);
  if (!(region_ - row.Bar()).intersected(texts).isEmpty()) {
    PaintTexts(brush);
    PaintActions(brush, hoveredRow_ == index ? hovered_ : TransferAction::None);
  }
  if (item.IsOpen()) PaintNotes(brush);
  const bool byKeys = ringed_ || option.state.testFlag(QStyle::State_KeyboardFocusChange);
  if (byKeys && option.state.testFlag(QStyle::State_HasFocus)) {
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(brush.ColorOf(Tone::Running), 2));
    painter->drawRect(option.rect.adjusted(1, 1, -1, -2));
  }
  painter->restore();
}

void TransferDelegate::PaintTexts(const Brush& brush) const {
  const Sign sign = SignOf(brush.item);
  PaintSymbol(brush.painter, brush.row.Sign(), sign.symbol, brush.ColorOf(sign.tone));
  const TransferWords words = TransferTexts(brush.item).Words();
  brush.DrawLine(brush.row.First(), words.name, brush.Text(), words.figure, Bold(brush.option.font),
                 Qt::ElideMiddle);
  QRect second = brush.row.Second();
  const QColor color = brush.ColorOf(HasFailed(brush.item) ? Tone::Bad : Tone::Secondary);
  if (const QRect arrow = brush.row.Arrow(); arrow.isValid()) {
    PaintSymbol(brush.painter, QRectF(arrow.left(), arrow.center().y() - 5, 12, 12),
                brush.item.IsOpen() ? "chevron-down" : "chevron-right", color);
    second.setLeft(arrow.right() + 1);
  }
  const QRect link = brush.row.Link();
  if (link.isValid()) second.setRight(link.left() - kGap);
  brush.DrawLine(second, words.state, color, words.pace, brush.option.font);
  if (!link.isValid()) return;
  QFont underlined = brush.option.font;
  underlined.setUnderline(true);
  brush.painter.setFont(underlined);
  brush.painter.setPen(brush.ColorOf(brush.option.palette.color(QPalette::Link)));
  brush.painter.drawText(link, Qt::AlignRight | Qt::AlignVCenter, brush.row.LinkText());
}

void TransferDelegate::PaintNotes(const Brush& brush) const {
  const auto notes = TransferTexts(brush.item).NoteLines();
  const bool failed = HasFailed(brush.item);
  for (int i = 0; i < static_cast<int>(notes.size()); ++i) {
    const auto& [entry, remark] = notes[static_cast<std::size_t>(i)];
    QRect line = brush.row.Note(i);
    if (!region_.intersects(line)) continue;
    if (!entry.isEmpty()) {
      PaintSymbol(brush.painter, QRectF(line.left() - 1, line.center().y() - 6, 14, 14),
                  failed ? "cross-circle" : "dash-circle",
                  brush.ColorOf(failed ? Tone::Bad : Tone::Secondary));
    }
    line.setLeft(line.left() + kNoteSign);
    QRect left = line;
    if (!remark.isEmpty()) left.setWidth(line.width() * 2 / 5);
    brush.DrawLine(left, entry, brush.Text(), {}, brush.option.font, Qt::ElideMiddle);
    if (!entry.isEmpty()) line.setLeft(left.right() + 1 + kGap);
    brush.DrawLine(line, remark, brush.ColorOf(Tone::Secondary), {}, brush.option.font);
  }
}

void TransferDelegate::PaintActions(const Brush& brush, TransferAction hovered) const {
  const auto paint = [&](int place, const char* symbol, TransferAction action) {
    const QRect slot = brush.row.Slot(place);
    if (action == hovered) {
      QColor ground = brush.Text();
      ground.setAlphaF(0.14F);
      brush.painter.setRenderHint(QPainter::Antialiasing);
      brush.painter.setPen(Qt::NoPen);
      brush.painter.setBrush(ground);
      brush.painter.drawRoundedRect(slot, 4, 4);
      brush.painter.setRenderHint(QPainter::Antialiasing, false);
    }
    PaintSymbol(brush.painter,
                QRectF(slot)
                    .adjusted(0, 0, kSymbol - slot.width(), kSymbol - slot.height())
                    .translated((slot.width() - kSymbol) / 2.0, (slot.height() - kSymbol) / 2.0),
                symbol, brush.Text());
  };
  paint(0, "close", TransferRow::CrossOf(brush.item));
  const TransferAction beside = TransferRow::BesideOf(brush.item);
  switch (beside) {
    case TransferAction::Pause: paint(1, "pause", beside); break;
    case TransferAction::Resume: paint(1, "play", beside); break;
    case TransferAction::Reveal: paint(1, "folder-plain", beside); break;
    default: break;
  }
}

}  // namespace corvane
