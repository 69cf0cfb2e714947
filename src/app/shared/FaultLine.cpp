#include "app/shared/FaultLine.h"

#include <QAccessible>
#include <QFormLayout>
#include <QPainter>

#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kSymbol = 16;
constexpr int kIndent = 24;

int RowOf(const QFormLayout& rows, QWidget& field) {
  for (int row = 0; row < rows.rowCount(); ++row) {
    QLayoutItem* item = rows.itemAt(row, QFormLayout::FieldRole);
    if (item == nullptr) continue;
    const bool within = item->layout() != nullptr && item->layout()->indexOf(&field) >= 0;
    if (within || item->widget() == &field) return row;
  }
  return rows.rowCount() - 1;
}

}  // namespace

FaultLine::FaultLine(QWidget* parent) : QLabel(parent) {
  setObjectName("Fault");
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  // As wide as its surroundings let it be, and as high as that needs.
  QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  setContentsMargins(kIndent, 0, 0, 0);
  hide();
}

void FaultLine::Say(QFormLayout& rows, QWidget& field, const QString& text) {
  Clear();
  if (rows.indexOf(this) >= 0) {
    const QFormLayout::TakeRowResult taken = rows.takeRow(this);
    delete taken.fieldItem;
  }
  rows.insertRow(RowOf(rows, field) + 1, QString(), this);
  field_ = &field;
  setText(text);
  show();
  field.setAccessibleDescription(text);
  field.setFocus();
  QAccessibleEvent event(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
  Q_EMIT Changed();
}

void FaultLine::Clear() {
  if (text().isEmpty()) return;
  if (!field_.isNull()) field_->setAccessibleDescription({});
  clear();
  hide();
  Q_EMIT Changed();
}

void FaultLine::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QColor color = ToneOf(palette(), Tone::Bad);
  const double y = (fontMetrics().height() - kSymbol) / 2.0;
  PaintSymbol(painter, QRectF(0, y, kSymbol, kSymbol), "cross-circle", color);
  painter.setPen(color);
  painter.drawText(contentsRect(), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, text());
}

}  // namespace corvane
