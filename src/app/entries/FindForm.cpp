#include "app/entries/FindForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

enum SizeRule : int { kAnySize, kAtLeast, kAtMost };
enum AgeRule : int { kAnyTime, kWithin, kSince, kBefore };

constexpr int kField = 88;
constexpr std::int64_t kKilo = 1000;

/// Midnight on the user's clock, counted as that clock counts.
std::int64_t Begins(const QDate& day) {
  return QDateTime(day, QTime(0, 0), Qt::UTC).toSecsSinceEpoch();
}

QLabel* Titled(const QString& text, QWidget* buddy) {
  auto* label = new QLabel(text, buddy->parentWidget());
  label->setBuddy(buddy);
  return label;
}

}  // namespace

FindForm::FindForm(QWidget* parent)
    : QWidget(parent),
      name_(new QLineEdit(this)),
      matchesCase_(new QCheckBox(tr("&Match case"), this)),
      sizeIs_(new QComboBox(this)),
      size_(new QSpinBox(this)),
      unit_(new QComboBox(this)),
      changed_(new QComboBox(this)),
      days_(new QSpinBox(this)),
      day_(new QDateEdit(this)),
      kind_(new QComboBox(this)) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins({});
  grid->setHorizontalSpacing(12);
  grid->setVerticalSpacing(8);
  grid->setColumnStretch(1, 1);
  AddName(*grid);
  AddKind(*grid);
  AddSize(*grid);
  AddAge(*grid);
  Update();
}

void FindForm::AddName(QGridLayout& grid) {
  name_->setObjectName("FindName");
  name_->setPlaceholderText(tr("All names"));
  SetTip(*name_, tr("Part of a name; or the whole, with * for anything and ? for one character"));
  matchesCase_->setObjectName("MatchCase");
  auto* line = new QHBoxLayout;
  line->addWidget(name_, 1);
  line->addSpacing(8);
  line->addWidget(matchesCase_);
  grid.addWidget(Titled(tr("Nam&e:"), name_), 0, 0);
  grid.addLayout(line, 0, 1);
  connect(name_, &QLineEdit::returnPressed, this, &FindForm::ReturnPressed);
}

void FindForm::AddKind(QGridLayout& grid) {
  kind_->setObjectName("FindKind");
  kind_->addItem(tr("Everything"), 0);
  kind_->addItem(tr("Files"), static_cast<int>(Kind::File));
  kind_->addItem(tr("Directories"), static_cast<int>(Kind::Directory));
  kind_->addItem(tr("Links"), static_cast<int>(Kind::Link));
  grid.addWidget(Titled(tr("&Kind:"), kind_), 1, 0);
  grid.addWidget(kind_, 1, 1, Qt::AlignLeft);
}

void FindForm::AddSize(QGridLayout& grid) {
  sizeIs_->setObjectName("SizeIs");
  sizeIs_->addItems({tr("Any"), tr("At least"), tr("At most")});
  size_->setObjectName("FindSize");
  size_->setAccessibleName(tr("Size"));
  size_->setRange(0, 1'000'000);
  size_->setValue(1);
  size_->setMinimumWidth(kField);
  unit_->setObjectName("SizeUnit");
  unit_->setAccessibleName(tr("Unit"));
  unit_->addItem(tr("bytes"), 0);
  unit_->addItem(tr("kB"), 1);
  unit_->addItem(tr("MB"), 2);
  unit_->addItem(tr("GB"), 3);
  unit_->setCurrentIndex(2);
  auto* line = new QHBoxLayout;
  for (QWidget* part :
       {static_cast<QWidget*>(sizeIs_), static_cast<QWidget*>(size_), static_cast<QWidget*>(unit_)})
    line->addWidget(part);
  line->addStretch();
  grid.addWidget(Titled(tr("Si&ze:"), sizeIs_), 2, 0);
  grid.addLayout(line, 2, 1);
  connect(sizeIs_, &QComboBox::currentIndexChanged, this, &FindForm::Update);
}

void FindForm::AddAge(QGridLayout& grid) {
  changed_->setObjectName("Changed");
  changed_->addItems({tr("At any time"), tr("Within the last"), tr("Since"), tr("Before")});
  days_->setObjectName("FindDays");
  days_->setAccessibleName(tr("Days"));
  days_->setRange(1, 100'000);
  days_->setValue(7);
  days_->setSuffix(' ' + tr("days"));
  days_->setMinimumWidth(kField);
  day_->setObjectName("FindDay");
  day_->setAccessibleName(tr("Day"));
  day_->setLocale(FiguresLocale());
  day_->setDisplayFormat(FiguresLocale().dateFormat(QLocale::ShortFormat));
  day_->setCalendarPopup(true);
  day_->setDate(QDate::currentDate());
  auto* line = new QHBoxLayout;
  for (QWidget* part :
       {static_cast<QWidget*>(changed_), static_cast<QWidget*>(days_), static_cast<QWidget*>(day_)})
    line->addWidget(part);
  line->addStretch();
  grid.addWidget(Titled(tr("Chan&ged:"), changed_), 3, 0);
  grid.addLayout(line, 3, 1);
  connect(changed_, &QComboBox::currentIndexChanged, this, &FindForm::Update);
}

void FindForm::Update() {
  const bool sized = sizeIs_->currentIndex() != kAnySize;
  size_->setVisible(sized);
  unit_->setVisible(sized);
  const int age = changed_->currentIndex();
  days_->setVisible(age == kWithin);
  day_->setVisible(age == kSince || age == kBefore);
}

FindRule FindForm::Rule(const std::string& encoding) const {
  FindRule rule{.name = NamePattern(name_->text().toStdString(), matchesCase_->isChecked()),
                .encoding = encoding};
  std::int64_t bytes = size_->value();
  for (int power = unit_->currentData().toInt(); power > 0; --power) bytes *= kKilo;
  if (sizeIs_->currentIndex() == kAtLeast) rule.least = bytes;
  if (sizeIs_->currentIndex() == kAtMost) rule.most = bytes;
  switch (changed_->currentIndex()) {
    case kWithin: rule.from = Begins(QDate::currentDate().addDays(1 - days_->value())); break;
    case kSince: rule.from = Begins(day_->date()); break;
    case kBefore: rule.before = Begins(day_->date()); break;
    default: break;
  }
  if (const int kind = kind_->currentData().toInt(); kind != 0) rule.kind = static_cast<Kind>(kind);
  return rule;
}

}  // namespace corvane
