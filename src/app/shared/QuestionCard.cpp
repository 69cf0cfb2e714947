#include "app/shared/QuestionCard.h"

#include <QFontDatabase>
#include <QGridLayout>
#include <QPainter>
#include <QScrollArea>
#include <algorithm>

#include "app/shared/Tones.h"
#include "app/shared/WrappedLabel.h"

namespace corvane {
namespace {

constexpr int kMargin = 12;
constexpr int kGap = 12;
constexpr int kBetweenRows = 8;
constexpr int kTallest = 240;
constexpr int kScrollBar = 16;

}  // namespace

QuestionCard::QuestionCard(const std::vector<QStringList>& facts, int fixed, int width,
                           QWidget* parent)
    : QFrame(parent) {
  setBackgroundRole(QPalette::Base);
  auto* area = new QScrollArea(this);
  area->setFrameShape(QFrame::NoFrame);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->viewport()->setAutoFillBackground(false);
  QWidget* table = MakeTable(facts, fixed, width - 2 * kMargin - kScrollBar);
  const int height = table->sizeHint().height();
  table->setAutoFillBackground(false);
  table->resize(width - 2 * kMargin - kScrollBar, height);
  area->setWidget(table);
  area->setFocusPolicy(height > kTallest ? Qt::TabFocus : Qt::NoFocus);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->addWidget(area);
  setFixedSize(width, std::min(height, kTallest) + 2 * kMargin);
}

int QuestionCard::LeastWidth(const std::vector<QStringList>& facts, int fixed) {
  if (fixed < 0) return 0;
  const QFontMetrics metrics{QFont()};
  const QFontMetrics fixedMetrics(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  int labels = 0;
  for (const QStringList& row : facts) labels = std::max(labels, metrics.horizontalAdvance(row[0]));
  const QStringList& row = facts[static_cast<std::size_t>(fixed)];
  int widest = 0;
  for (const QString& line : row.mid(1).join('\n').split('\n')) {
    widest = std::max(widest, fixedMetrics.horizontalAdvance(line));
  }
  const auto texts = static_cast<int>(row.size()) - 1;
  return labels + 1 + texts * (widest + 1 + kGap) + 2 * kMargin + kScrollBar;
}

QWidget* QuestionCard::MakeTable(const std::vector<QStringList>& facts, int fixed, int width) {
  auto* table = new QWidget(this);
  auto* grid = new QGridLayout(table);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(kGap);
  grid->setVerticalSpacing(kBetweenRows);
  int labels = 0;
  qsizetype columns = 1;
  for (const QStringList& row : facts) {
    columns = std::max(columns, row.size());
    if (row.size() > 1) labels = std::max(labels, fontMetrics().horizontalAdvance(row[0]) + 1);
  }
  const auto texts = static_cast<int>(std::max<qsizetype>(columns - 1, 1));
  const int each = columns == 1 ? width : (width - labels - texts * kGap) / texts;
  for (int y = 0; y < static_cast<int>(facts.size()); ++y) {
    const QStringList& row = facts[static_cast<std::size_t>(y)];
    const bool titles = row.size() > 2 && row[0].isEmpty();
    for (int x = 0; x < static_cast<int>(row.size()); ++x) {
      auto* cell = new WrappedLabel(row[x], table);
      if (x > 0 && y == fixed) {
        cell->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
      }
      if (titles) cell->setFont(Bold(font()));
      if (x == 0 && row.size() > 1) cell->SetSecondary();
      cell->WrapAt(row.size() == 1 ? width : x == 0 ? labels : each);
      grid->addWidget(cell, y, x, 1, row.size() == 1 ? -1 : 1, Qt::AlignTop | Qt::AlignLeft);
    }
  }
  return table;
}

void QuestionCard::paintEvent(QPaintEvent* /*event*/) {
  constexpr double kRadius = 4;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(ToneOf(palette(), Tone::Edge));
  painter.setBrush(palette().brush(QPalette::Base));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
}

}  // namespace corvane
