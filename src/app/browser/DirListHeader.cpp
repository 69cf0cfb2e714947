#include "app/browser/DirListHeader.h"

#include <QEvent>
#include <QScopedValueRollback>
#include <QStyleOption>
#include <algorithm>
#include <array>
#include <utility>

#include "app/browser/DirListModel.h"
#include "app/browser/EntryKind.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Style.h"

namespace corvane {
namespace {

constexpr int kLeastWidth = 48;
constexpr int kPadding = 24;
// Those that go first where there is no room, before the date and the size.
constexpr std::array kFirstToGo{DirListModel::kKind,  DirListModel::kGroup,
                                DirListModel::kOwner, DirListModel::kPermissions,
                                DirListModel::kDate,  DirListModel::kSize};

int WidestDate(const QFontMetrics& font) {
  int widest = 0;
  for (int month = 1; month <= 12; ++month) {
    const QString text =
        Style::InForce().EntryDate(QDate(2000, month, 28), QTime(20, 58), "12/28/2000");
    widest = std::max(widest, font.horizontalAdvance(text));
  }
  return widest;
}

int WidestText(int column, const QFontMetrics& text, const QFontMetrics& figures) {
  switch (column) {
    case DirListModel::kSize:
      return figures.horizontalAdvance(Style::InForce().EntrySize(999'900, " 1000.00  MB"));
    case DirListModel::kDate: return WidestDate(figures);
    case DirListModel::kPermissions: return text.horizontalAdvance("rwxrwxrwx");
    case DirListModel::kKind: return text.horizontalAdvance(NameOf(EntryKind::Binary));
    default: return text.horizontalAdvance("www-data");
  }
}

}  // namespace

DirListHeader::DirListHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(false);
  setHighlightSections(false);
  setStretchLastSection(false);
  setMinimumSectionSize(kLeastWidth);
  setSectionResizeMode(QHeaderView::Interactive);
  setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  SetHeight();
  connect(this, &QHeaderView::sectionResized, this, &DirListHeader::UserResized);
}

void DirListHeader::SetWanted(const Columns& columns) {
  wanted_ = columns;
  Fit(width_);
}

// As wide as the user made it, or as its texts commonly are.
int DirListHeader::WidthOf(int column) const {
  const int chosen = wanted_.at(static_cast<std::size_t>(column)).width;
  if (chosen > 0) return std::max(chosen, kLeastWidth);
  const QFontMetrics figures(Style::InForce().FiguresFont(font()));
  return std::max(WidestText(column, fontMetrics(), figures) + kPadding, sectionSizeHint(column));
}

int DirListHeader::LeastName() const {
  return 36 + fontMetrics().averageCharWidth() * 18;
}

void DirListHeader::Fit(int width) {
  width_ = width;
  if (model() == nullptr || width <= 0 || count() < DirListModel::kColumns) return;
  const QScopedValueRollback fitting(fitting_, true);
  std::array<int, DirListModel::kColumns> widths{};
  int others = 0;
  for (int column = DirListModel::kName + 1; column < DirListModel::kColumns; ++column) {
    const auto place = static_cast<std::size_t>(column);
    widths.at(place) = wanted_.at(place).shown ? WidthOf(column) : 0;
    others += widths.at(place);
  }
  for (const int column : kFirstToGo) {
    if (width - others >= LeastName()) break;
    others -= std::exchange(widths.at(static_cast<std::size_t>(column)), 0);
  }
  widths.front() = std::max(width - others, kLeastWidth);
  for (int column = 0; column < DirListModel::kColumns; ++column) {
    const int wide = widths.at(static_cast<std::size_t>(column));
    setSectionHidden(column, wide == 0);
    if (wide > 0) resizeSection(column, wide);
  }
}

int DirListHeader::NextShown(int column) const {
  for (int next = column + 1; next < count(); ++next) {
    if (!isSectionHidden(next)) return next;
  }
  return -1;
}

// The edge between two columns moves: what one gains the other loses.
void DirListHeader::UserResized(int column, int before, int now) {
  if (fitting_ || before == 0 || now == 0) return;
  if (const int next = NextShown(column); next >= 0) {
    const int both = before + sectionSize(next);
    const int wide = std::clamp(now, kLeastWidth, std::max(both - kLeastWidth, kLeastWidth));
    if (column != DirListModel::kName) wanted_.at(static_cast<std::size_t>(column)).width = wide;
    wanted_.at(static_cast<std::size_t>(next)).width = std::max(both - wide, kLeastWidth);
  }
  Fit(width_);
  Q_EMIT WidthsChanged();
}

void DirListHeader::SetHeight() {
  setFixedHeight(std::max(LookStyle::kRowHeight, fontMetrics().height() + 8));
}

bool DirListHeader::event(QEvent* event) {
  const bool done = QHeaderView::event(event);
  if (event->type() == QEvent::FontChange) {
    SetHeight();
    Fit(width_);
  }
  return done;
}

// The first title stands above the symbols of the rows.
void DirListHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
  QRect label = rect;
  if (section == DirListModel::kName) {
    constexpr int kIndent = 4;
    QStyleOption before;
    before.initFrom(this);
    before.rect = QRect(rect.left(), rect.top(), kIndent, rect.height());
    style()->drawControl(QStyle::CE_HeaderEmptyArea, &before, painter, this);
    label.setLeft(rect.left() + kIndent);
  }
  QHeaderView::paintSection(painter, label, section);
}

}  // namespace corvane
