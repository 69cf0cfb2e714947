#include "app/doctor/StepList.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>

#include "app/shared/BusySign.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

using Sign = DiagnosisStep::Sign;

constexpr int kRow = 48;
constexpr int kLowRow = 32;  // without anything seen
constexpr int kMargin = 12;
constexpr int kText = 40;
constexpr int kSymbol = 16;

enum Role { kKind = Qt::UserRole, kSign, kName, kSeen, kTime, kFinding };

struct Look {
  const char* symbol;
  Tone tone;
};

Look LookOf(Sign sign) {
  switch (sign) {
    case Sign::Good: return {"tick-circle", Tone::Good};
    case Sign::Caution: return {"triangle", Tone::Caution};
    case Sign::Bad: return {"cross-circle", Tone::Bad};
    case Sign::Running:
    case Sign::LeftOut: break;
  }
  return {"dash-circle", Tone::Secondary};
}

/// A sign, the name with the time at the right, and what was seen in as many lines as it takes.
class StepPainter : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const auto sign = static_cast<Sign>(index.data(kSign).toInt());
    const QPalette& palette = option.palette;
    const QColor less = ToneOf(palette, Tone::Secondary);
    if (index.row() > 0) {
      painter->fillRect(QRect(option.rect.x() + kText, option.rect.y(), option.rect.width(), 1),
                        ToneOf(palette, Tone::Line));
    }
    const Look look = LookOf(sign);
    const QRectF place(option.rect.x() + kMargin,
                       option.rect.y() + (option.rect.height() - kSymbol) / 2.0, kSymbol, kSymbol);
    if (sign != Sign::Running)
      PaintSymbol(*painter, place, look.symbol, ToneOf(palette, look.tone));
    const bool wrong = sign == Sign::Bad;
    const int line = option.fontMetrics.height();
    const QRect room = Room(option, index);
    painter->setPen(less);
    const QRect upper(room.x(), room.y(), room.width(), line);
    painter->drawText(upper, Qt::AlignRight | Qt::AlignVCenter, index.data(kTime).toString());
    painter->setFont(wrong ? Bold(option.font) : option.font);
    painter->setPen(sign == Sign::LeftOut ? less : palette.color(QPalette::Text));
    painter->drawText(upper, Qt::AlignLeft | Qt::AlignVCenter, index.data(kName).toString());
    painter->setFont(option.font);
    painter->setPen(wrong ? ToneOf(palette, Tone::Bad) : less);
    painter->drawText(room.adjusted(0, line + 1, 0, 0), kFlow, index.data(kSeen).toString());
    Ring(*painter, option);
  }

  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override {
    const int width = static_cast<const QListView*>(option.widget)->viewport()->width();
    const int least = index.data(kSeen).toString().isEmpty() ? kLowRow : kRow;
    return {0, std::max(least, TextHeight(option, index, width - kText - kMargin) + kMargin)};
  }

 private:
  static constexpr int kFlow =
      Qt::AlignLeft | Qt::AlignTop | Qt::TextWrapAnywhere | Qt::TextWordWrap;

  static int TextHeight(const QStyleOptionViewItem& option, const QModelIndex& index, int width) {
    const QString seen = index.data(kSeen).toString();
    const QRect room(0, 0, width, 10'000);
    const int upper = option.fontMetrics.height();
    if (seen.isEmpty()) return upper;
    return upper + 1 + option.fontMetrics.boundingRect(room, kFlow, seen).height();
  }
  static QRect Room(const QStyleOptionViewItem& option, const QModelIndex& index) {
    const QRect room = option.rect.adjusted(kText, 0, -kMargin, 0);
    const int height = TextHeight(option, index, room.width());
    return {room.x(), room.y() + (room.height() - height) / 2, room.width(), height};
  }
  // Where the keyboard is.
  static void Ring(QPainter& painter, const QStyleOptionViewItem& option) {
    if (!option.state.testFlag(QStyle::State_HasFocus)) return;
    painter.setPen(QPen(ToneOf(option.palette, Tone::Running), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(option.rect.adjusted(1, 1, -1, -1));
  }
};

}  // namespace

StepList::StepList(QWidget* parent) : QListWidget(parent) {
  setObjectName("Steps");
  setAccessibleName(tr("Steps"));
  setItemDelegate(new StepPainter(this));
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(ScrollPerPixel);
  setSelectionMode(NoSelection);
  setFocusPolicy(Qt::NoFocus);  // as long as it is empty
  setMinimumHeight(3 * kRow);
  viewport()->setAutoFillBackground(false);
}

QString StepList::WordFor(Sign sign) {
  switch (sign) {
    case Sign::Good: return tr("Good");
    case Sign::Caution: return tr("Note");
    case Sign::Bad: return tr("Wrong");
    case Sign::Running: return tr("Under way");
    case Sign::LeftOut: break;
  }
  return tr("Left out");
}

QString StepList::TimeText(std::chrono::milliseconds time) {
  constexpr int kSecond = 1000;
  const auto count = static_cast<int>(time.count());
  if (count < kSecond) return tr("%1 ms").arg(count);
  return tr("%1 s").arg(QLocale().toString(count / static_cast<double>(kSecond), 'f', 1));
}

QListWidgetItem* StepList::RowOf(DiagnosisStep::Kind kind) {
  for (int row = 0; row < count(); ++row) {
    if (item(row)->data(kKind).toInt() == static_cast<int>(kind)) return item(row);
  }
  setFocusPolicy(Qt::StrongFocus);
  auto* row = new QListWidgetItem(this);
  row->setData(kKind, static_cast<int>(kind));
  return row;
}

void StepList::Show(const DiagnosisStep& step) {
  QListWidgetItem* row = RowOf(step.kind);
  const bool running = step.sign == Sign::Running;
  const bool timed = !running && step.sign != Sign::LeftOut;
  const QString time = timed ? TimeText(step.took) : QString();
  const QString seen = running ? QStringLiteral("…") : ShownInLine(step.seen);
  row->setData(kSign, static_cast<int>(step.sign));
  row->setData(kName, Shown(step.name));
  row->setData(kSeen, seen);
  row->setData(kTime, time);
  row->setData(kFinding, static_cast<int>(step.finding));
  QStringList sentence{WordFor(step.sign) + ": " + Shown(step.name) + '.'};
  if (!running && !seen.isEmpty()) sentence += seen;
  if (timed) sentence += time;
  row->setText(sentence.join(' '));
  removeItemWidget(row);
  if (running) {
    auto* room = new QWidget;
    auto* layout = new QHBoxLayout(room);
    layout->setContentsMargins(kMargin, 0, 0, 0);
    auto* sign = new BusySign(room);
    layout->addWidget(sign, 0, Qt::AlignLeft | Qt::AlignVCenter);
    setItemWidget(row, room);
    sign->SetBusy(true);
  }
  scrollToItem(row);
}

int StepList::Tried() const {
  int tried = 0;
  for (int row = 0; row < count(); ++row) {
    if (item(row)->data(kSign).toInt() != static_cast<int>(Sign::LeftOut)) ++tried;
  }
  return tried;
}

QString StepList::AsText() const {
  QString text;
  for (int row = 0; row < count(); ++row) {
    const QListWidgetItem* step = item(row);
    const QString time = step->data(kTime).toString();
    text += QStringLiteral("[%1] %2").arg(WordFor(static_cast<Sign>(step->data(kSign).toInt())),
                                          step->data(kName).toString());
    if (!time.isEmpty()) text += QStringLiteral(" (%1)").arg(time);
    const QString seen = step->data(kSeen).toString();
    text += seen.isEmpty() ? QStringLiteral("\n") : QStringLiteral("\n    %1\n").arg(seen);
  }
  return text;
}

void StepList::ShowFirst(Finding finding) {
  int found = 0;
  for (int row = 0; row < count() && finding != Finding::Nothing; ++row) {
    if (item(row)->data(kFinding).toInt() == static_cast<int>(finding)) found = row;
  }
  setCurrentRow(found);
  if (found < 3) return scrollToTop();
  scrollToItem(item(found), PositionAtCenter);
}

// Lines break elsewhere then.
void StepList::resizeEvent(QResizeEvent* event) {
  QListWidget::resizeEvent(event);
  scheduleDelayedItemsLayout();
}

}  // namespace corvane
