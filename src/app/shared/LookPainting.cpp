#include "app/shared/LookPainting.h"

#include <QPainter>
#include <QStyleOption>
#include <algorithm>

#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane::look {
namespace {

constexpr double kRadius = 4;

bool Has(const QStyleOption& option, QStyle::StateFlag flag) {
  return option.state.testFlag(flag);
}

bool Usable(const QStyleOption& option) {
  return Has(option, QStyle::State_Enabled);
}

// A line of `width` pixels along the inside of `rect`.
void DrawBox(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& line,
             double width = 1, double radius = kRadius) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(fill);
  painter.setPen(QPen(line, width));
  const double in = width / 2;
  painter.drawRoundedRect(QRectF(rect).adjusted(in, in, -in, -in), radius - in, radius - in);
  painter.restore();
}

void FillBox(QPainter& painter, const QRect& rect, const QColor& fill, double radius = kRadius) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill);
  painter.drawRoundedRect(rect, radius, radius);
  painter.restore();
}

QColor OutlineOf(const QStyleOption& option, Tone tone) {
  const QColor line = ToneOf(option.palette, tone);
  return Usable(option) ? line : Mixed(line, option.palette.color(QPalette::Window), 55);
}

// Raised a little above the window in light themes, and in dark ones as well.
QColor ButtonGround(const QPalette& palette) {
  const QColor window = palette.color(QPalette::Window);
  return window.lightness() < 128 ? Mixed(Qt::white, window, 6) : Mixed(Qt::white, window, 65);
}

void DrawTick(QPainter& painter, const QRect& rect, const QColor& color) {
  PaintSymbol(painter, QRectF(rect).adjusted(1, 1, -1, -1), "tick", color);
}

QColor MarkColor(const QStyleOption& option) {
  return option.palette.color(Usable(option) ? QPalette::Active : QPalette::Disabled,
                              QPalette::Text);
}

constexpr int kIconGap = 8;

/// What a symbol takes of a label's width.
int WidthOf(const QIcon& icon, const QSize& size) {
  return icon.isNull() ? 0 : size.width() + kIconGap;
}

// From the left edge of `rect` on.
void DrawLabel(QPainter& painter, const QRect& rect, const QIcon& icon, const QSize& size,
               QIcon::Mode mode, const QString& text) {
  if (!icon.isNull()) {
    const QPoint corner(rect.x(), rect.center().y() - size.height() / 2 + 1);
    icon.paint(&painter, QRect(corner, size), Qt::AlignCenter, mode);
  }
  // A letter that is underlined stands apart, so that the text may be wider than measured.
  painter.drawText(rect.adjusted(WidthOf(icon, size), 0, 0, 0),
                   Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextDontClip, text);
}

}  // namespace

void DrawButton(QPainter& painter, const QStyleOptionButton& option, bool primary) {
  const QRect rect = option.rect;
  const QPalette& palette = option.palette;
  const bool filled = primary && Usable(option);
  QColor ground = filled ? ToneOf(palette, Tone::Primary) : ButtonGround(palette);
  if (!Usable(option)) ground = palette.color(QPalette::Window);
  const QColor line = filled ? ground.darker(115) : OutlineOf(option, Tone::Edge);
  if (Has(option, QStyle::State_Sunken) || Has(option, QStyle::State_On)) {
    ground = ground.darker(112);
  } else if (Usable(option) && Has(option, QStyle::State_MouseOver)) {
    ground = filled ? ground.lighter(108) : Mixed(palette.color(QPalette::Text), ground, 7);
  }
  DrawBox(painter, rect, ground, line);
  if (!Has(option, QStyle::State_HasFocus) || !Has(option, QStyle::State_KeyboardFocusChange)) {
    return;
  }
  // On the filled button a ring of its own colour would not be seen.
  if (filled) {
    DrawBox(painter, rect.adjusted(3, 3, -3, -3), Qt::transparent,
            palette.color(QPalette::HighlightedText), 1.5, 2.5);
  } else {
    DrawBox(painter, rect, Qt::transparent, ToneOf(palette, Tone::Running), 2);
  }
}

void DrawButtonLabel(QPainter& painter, const QStyleOptionButton& option, bool primary) {
  const bool filled = primary && Usable(option);
  const int width = WidthOf(option.icon, option.iconSize) +
                    option.fontMetrics.size(Qt::TextShowMnemonic, option.text).width();
  const int x = option.rect.x() + (option.rect.width() - width) / 2;
  painter.setPen(option.palette.color(Usable(option) ? QPalette::Active : QPalette::Disabled,
                                      filled ? QPalette::HighlightedText : QPalette::ButtonText));
  DrawLabel(painter, QRect(x, option.rect.y(), width, option.rect.height()), option.icon,
            option.iconSize,
            filled           ? QIcon::Selected
            : Usable(option) ? QIcon::Normal
                             : QIcon::Disabled,
            option.text);
}

void DrawToolLabel(QPainter& painter, const QStyleOptionToolButton& option) {
  constexpr int kMargin = 8;
  painter.setPen(option.palette.color(Usable(option) ? QPalette::Active : QPalette::Disabled,
                                      QPalette::ButtonText));
  DrawLabel(painter, option.rect.adjusted(kMargin, 0, 0, 0), option.icon, option.iconSize,
            Usable(option) ? QIcon::Normal : QIcon::Disabled, option.text);
}

void DrawToolButton(QPainter& painter, const QStyleOption& option) {
  const QRect rect = option.rect;
  const QColor text = option.palette.color(QPalette::Text);
  if (Has(option, QStyle::State_On) || Has(option, QStyle::State_Sunken)) {
    DrawBox(painter, rect, Mixed(text, option.palette.color(QPalette::Window), 14),
            OutlineOf(option, Tone::Edge));
  } else if (Usable(option) && Has(option, QStyle::State_MouseOver)) {
    FillBox(painter, rect, ToneOf(option.palette, Tone::Hover));
  }
  if (Has(option, QStyle::State_HasFocus) && Has(option, QStyle::State_KeyboardFocusChange)) {
    DrawBox(painter, rect, Qt::transparent, ToneOf(option.palette, Tone::Running), 2);
  }
}

void DrawField(QPainter& painter, const QStyleOption& option) {
  const QColor ground = option.palette.color(Usable(option) ? QPalette::Base : QPalette::Window);
  if (Usable(option) && Has(option, QStyle::State_HasFocus)) {
    DrawBox(painter, option.rect, ground, ToneOf(option.palette, Tone::Running), 2);
  } else {
    DrawBox(painter, option.rect, ground, OutlineOf(option, Tone::Outline));
  }
}

void DrawCheckBox(QPainter& painter, const QStyleOption& option) {
  const QColor base = option.palette.color(Usable(option) ? QPalette::Base : QPalette::Window);
  const QColor ground = Has(option, QStyle::State_MouseOver) && Usable(option)
                            ? Mixed(option.palette.color(QPalette::Text), base, 7)
                            : base;
  DrawBox(painter, option.rect, ground, OutlineOf(option, Tone::Outline), 1, 3);
  if (Has(option, QStyle::State_On)) DrawTick(painter, option.rect, MarkColor(option));
  if (Has(option, QStyle::State_NoChange)) {
    const QRect middle(option.rect.left() + 4, option.rect.center().y(), option.rect.width() - 8,
                       2);
    painter.fillRect(middle, MarkColor(option));
  }
}

void DrawRadioButton(QPainter& painter, const QStyleOption& option) {
  const double radius = option.rect.width() / 2.0;
  const QColor ground = option.palette.color(Usable(option) ? QPalette::Base : QPalette::Window);
  DrawBox(painter, option.rect, ground, OutlineOf(option, Tone::Outline), 1, radius);
  if (Has(option, QStyle::State_On)) {
    const QRect dot = option.rect.adjusted(4, 4, -4, -4);
    FillBox(painter, dot, MarkColor(option), dot.width() / 2.0);
  }
}

void DrawFocusRing(QPainter& painter, const QStyleOption& option) {
  DrawBox(painter, option.rect, Qt::transparent, ToneOf(option.palette, Tone::Running), 2);
}

void DrawComboBox(QPainter& painter, const QStyleOptionComboBox& option) {
  if (option.editable) {
    DrawField(painter, option);
  } else {
    QStyleOptionButton button;
    button.rect = option.rect;
    button.palette = option.palette;
    button.state = option.state & ~QStyle::State_On;
    if (option.activeSubControls == QStyle::SC_None) button.state &= ~QStyle::State_Sunken;
    DrawButton(painter, button, false);
    DrawBox(painter, option.rect, Qt::transparent, OutlineOf(option, Tone::Outline));
    if (Has(option, QStyle::State_HasFocus)) DrawFocusRing(painter, option);
  }
  constexpr int kArrow = 14;
  constexpr int kFromEdge = 8;
  const int x = option.direction == Qt::RightToLeft ? option.rect.left() + kFromEdge
                                                    : option.rect.right() - kFromEdge - kArrow + 1;
  const QRect arrow(x, option.rect.center().y() - kArrow / 2 + 1, kArrow, kArrow);
  PaintSymbol(painter, arrow, "chevron-down", MarkColor(option));
}

void DrawHeaderSection(QPainter& painter, const QStyleOption& option) {
  painter.fillRect(option.rect, option.palette.color(QPalette::Base));
  if (Usable(option) && Has(option, QStyle::State_MouseOver)) {
    painter.fillRect(option.rect, ToneOf(option.palette, Tone::Hover));
  }
  painter.fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1),
                   ToneOf(option.palette, Tone::Line));
}

void DrawHeaderLabel(QPainter& painter, const QStyleOptionHeader& option) {
  constexpr int kArrow = 12;
  constexpr int kGap = 4;
  const bool sorted = option.sortIndicator != QStyleOptionHeader::None;
  const bool right = option.textAlignment.testFlag(Qt::AlignRight);
  const int room = option.rect.width() - (sorted ? kArrow + kGap : 0);
  const QString text = option.fontMetrics.elidedText(option.text, Qt::ElideRight, room);
  const int width = option.fontMetrics.horizontalAdvance(text);
  QRect label = option.rect;
  if (right) {
    label.setLeft(label.right() - width + 1);
  } else {
    label.setWidth(width);
  }
  painter.setPen(sorted ? option.palette.color(QPalette::Text)
                        : ToneOf(option.palette, Tone::Secondary));
  painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
  if (!sorted) return;
  const int x = right ? label.left() - kGap - kArrow : label.right() + 1 + kGap;
  const QRect arrow(x, option.rect.center().y() - kArrow / 2, kArrow, kArrow);
  // The toolkit's arrow points to where the smaller one stands.
  const bool ascending = option.sortIndicator == QStyleOptionHeader::SortDown;
  PaintSymbol(painter, arrow, ascending ? "chevron-up" : "chevron-down", painter.pen().color());
}

void DrawProgressBar(QPainter& painter, const QStyleOptionProgressBar& option) {
  constexpr int kHeight = 4;
  constexpr double kBarRadius = 2;
  QRect groove = option.rect;
  groove.setTop(option.rect.center().y() - kHeight / 2 + 1);
  groove.setHeight(kHeight);
  FillBox(painter, groove, ToneOf(option.palette, Tone::Line), kBarRadius);
  const double range = std::max(1, option.maximum - option.minimum);
  const double part = std::clamp((option.progress - option.minimum) / range, 0.0, 1.0);
  groove.setWidth(static_cast<int>(groove.width() * part));
  const Tone tone = Usable(option) ? Tone::Running : Tone::Stopped;
  if (groove.width() > 0) FillBox(painter, groove, ToneOf(option.palette, tone), kBarRadius);
}

}  // namespace corvane::look
