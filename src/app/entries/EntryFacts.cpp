#include "app/entries/EntryFacts.h"

#include <QDateTimeEdit>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <algorithm>

#include "app/entries/LinkButton.h"
#include "app/shared/ElidedLabel.h"
#include "app/shared/Figures.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kPicture = 32;
constexpr int kFactHeight = 26;
constexpr int kGap = 12;

/// As the user's clock shows it; a time in the server's own zone as it stands.
QDateTime OnTheClock(const RemoteTime& time) {
  if (time.utc) return QDateTime::fromSecsSinceEpoch(time.seconds);
  const QDateTime told = QDateTime::fromSecsSinceEpoch(time.seconds, Qt::UTC);
  return {told.date(), told.time()};
}

QString DateText(const RemoteEntry& entry) {
  if (!entry.modified) return EntryFacts::tr("not told");
  const QDateTime time = OnTheClock(*entry.modified);
  switch (entry.modified->precision) {
    case RemoteTime::Precision::Day:
      return EntryFacts::tr("%1 (no time given)").arg(ShortDate(time.date(), std::nullopt));
    case RemoteTime::Precision::Minute: return ShortDate(time.date(), time.time());
    case RemoteTime::Precision::Second: break;
  }
  return ShortDate(time.date(), std::nullopt) + ' ' +
         time.time().toString(QStringLiteral("HH:mm:ss"));
}

QString BytesText(std::int64_t bytes) {
  return EntryFacts::tr("%1 (%2)", "209,715,200 bytes (209.7 MB)")
      .arg(ExactSize(bytes), Style::InForce().FileSize(bytes).trimmed());
}

bool IsDirectory(const RemoteEntry& entry) {
  return entry.kind == RemoteEntry::Kind::Directory;
}

QString Counted(std::int64_t files, std::int64_t directories) {
  const auto number = [](std::int64_t count) { return static_cast<int>(count); };
  QString some =
      files == 1 ? EntryFacts::tr("1 file") : EntryFacts::tr("%n files", "", number(files));
  if (directories == 0) return some;
  const QString more = directories == 1 ? EntryFacts::tr("1 directory")
                                        : EntryFacts::tr("%n directories", "", number(directories));
  return EntryFacts::tr("%1, %2", "files, directories").arg(some, more);
}

}  // namespace

EntryFacts::EntryFacts(const EntriesHost& host, const std::string& directory,
                       const std::vector<RemoteEntry>& entries, QWidget* parent)
    : QWidget(parent),
      picture_(new QWidget(this)),
      rows_(new QGridLayout),
      size_(new ElidedLabel(this)),
      count_(new LinkButton(tr("C&ount"), this)),
      date_(new ElidedLabel(this)),
      set_(new LinkButton(tr("&Set"), this)),
      time_(new QDateTimeEdit(this)) {
  const std::string& encoding = host.Server().encoding;
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(16);
  layout->addLayout(MakeHead(host, directory, entries));
  layout->addSpacing(1);
  rows_->setHorizontalSpacing(kGap);
  rows_->setVerticalSpacing(0);
  rows_->setColumnStretch(1, 1);
  layout->addLayout(rows_);
  AddSize(entries);
  AddDate(host.SetsTimes(), entries);
  AddText(tr("Owner"), "OwnerFact", encoding, entries, &RemoteEntry::owner);
  AddText(tr("Group"), "GroupFact", encoding, entries, &RemoteEntry::group);
  if (entries.size() == 1)
    AddText(tr("Leads to"), "TargetFact", encoding, entries, &RemoteEntry::linkTarget);
}

QLayout* EntryFacts::MakeHead(const EntriesHost& host, const std::string& directory,
                              const std::vector<RemoteEntry>& entries) {
  const bool one = entries.size() == 1;
  const EntryTexts texts = host.TextsOf(entries.front());
  symbol_ = one ? texts.symbol : "several";
  picture_->setFixedSize(kPicture, kPicture);
  const Site& site = host.Server();
  const QString where = ToText(directory, site.encoding);
  const QString server = ToText(site.host);
  auto* name = new ElidedLabel(this, Qt::ElideMiddle);
  name->setObjectName("NameFact");
  name->setFont(Bold(font()));
  name->setText(one ? texts.name : tr("%n entries", "", static_cast<int>(entries.size())));
  auto* place = new ElidedLabel(this, Qt::ElideMiddle);
  place->setObjectName("PlaceFact");
  place->SetSecondary(true);
  place->setText(
      one ? tr("%1 in %2 on %3", "Directory in /htdocs on host").arg(texts.kind, where, server)
          : tr("In %1 on %2", "/htdocs, host").arg(where, server));
  auto* words = new QVBoxLayout;
  words->setSpacing(2);
  words->addWidget(name);
  words->addWidget(place);
  auto* head = new QHBoxLayout;
  head->setSpacing(kGap);
  head->addWidget(picture_);
  head->addLayout(words, 1);
  return head;
}

QHBoxLayout* EntryFacts::AddRow(const QString& title, QWidget* value) {
  const int row = rows_->rowCount();
  auto* label = new ElidedLabel(this);
  label->SetSecondary(true);
  label->setText(title);
  label->setBuddy(value);
  label->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  auto* line = new QHBoxLayout;
  line->setSpacing(4);
  line->addWidget(value);
  rows_->addWidget(label, row, 0);
  rows_->addLayout(line, row, 1);
  rows_->setRowMinimumHeight(row, kFactHeight);
  return line;
}

void EntryFacts::AddSize(const std::vector<RemoteEntry>& entries) {
  bool told = true;
  for (const RemoteEntry& entry : entries) {
    if (IsDirectory(entry)) {
      ++directories_;
      continue;
    }
    ++files_;
    told = told && entry.size.has_value();
    bytes_ += entry.size.value_or(0);
  }
  size_->setObjectName("SizeFact");
  size_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  QHBoxLayout* line = AddRow(tr("Size"), size_);
  count_->setObjectName("Count");
  count_->setVisible(directories_ > 0);
  line->addWidget(count_);
  line->addStretch();
  connect(count_, &LinkButton::clicked, this, &EntryFacts::CountPressed);
  if (directories_ > 0) return size_->setText(tr("not counted yet"));
  const bool several = entries.size() > 1;
  QString text = told || bytes_ > 0 ? BytesText(bytes_) : tr("not told");
  if (several && told) text += ", " + Counted(files_, 0);
  size_->setText(text);
}

void EntryFacts::ShowCounted(const WalkProgress& counted, bool over, const QString& note) {
  const std::int64_t bytes = bytes_ + counted.bytes;
  const QString number = Counted(files_ + counted.files, counted.folders);
  const QString size = over ? BytesText(bytes) : Style::InForce().FileSize(bytes).trimmed();
  const QString all = tr("%1 in %2", "1.2 MB in 14 files").arg(size, number);
  size_->setText(over ? all : tr("%1 so far").arg(all));
  SetTip(*size_, note.isEmpty() ? all : all + '\n' + note);
  if (over && !note.isEmpty()) size_->setText(tr("%1, not whole", "what was counted").arg(all));
  count_->setText(over ? tr("C&ount") : tr("S&top"));
  count_->setAccessibleName(over ? tr("Count") : tr("Stop"));
  count_->setVisible(!over || !note.isEmpty());
  count_->updateGeometry();
}

void EntryFacts::AddDate(bool settable, const std::vector<RemoteEntry>& entries) {
  const RemoteEntry& first = entries.front();
  const bool same = std::ranges::all_of(
      entries, [&](const RemoteEntry& entry) { return entry.modified == first.modified; });
  date_->setObjectName("DateFact");
  date_->setText(same ? DateText(first) : tr("They differ"));
  date_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  QHBoxLayout* line = AddRow(tr("Date"), date_);
  const bool link = std::ranges::all_of(
      entries, [](const RemoteEntry& entry) { return entry.kind == RemoteEntry::Kind::Link; });
  set_->setObjectName("SetTime");
  set_->setAccessibleName(tr("Set the date"));
  set_->setEnabled(settable && !link);
  if (!settable) SetTip(*set_, tr("This server cannot set the time of a file."));
  if (link) SetTip(*set_, tr("The time would be that of what the link leads to."));
  time_->setObjectName("Time");
  time_->setAccessibleName(tr("Date"));
  time_->setLocale(FiguresLocale());
  time_->setDisplayFormat(FiguresLocale().dateFormat(QLocale::ShortFormat) +
                          QStringLiteral(" HH:mm:ss"));
  time_->setCalendarPopup(true);
  time_->setDateTime(first.modified ? OnTheClock(*first.modified) : QDateTime::currentDateTime());
  time_->hide();
  line->addWidget(set_);
  line->addWidget(time_);
  line->addStretch();
  connect(set_, &LinkButton::clicked, this, &EntryFacts::EditTime);
  connect(time_, &QDateTimeEdit::dateTimeChanged, this, &EntryFacts::TimeChanged);
}

void EntryFacts::EditTime() {
  timed_ = true;
  date_->hide();
  set_->hide();
  time_->show();
  time_->setFocus();
  Q_EMIT TimeChanged();
}

std::optional<std::int64_t> EntryFacts::Time() const {
  return timed_ ? std::optional(time_->dateTime().toSecsSinceEpoch()) : std::nullopt;
}

void EntryFacts::AddText(const QString& title, const char* name, const std::string& encoding,
                         const std::vector<RemoteEntry>& entries, std::string RemoteEntry::*field) {
  const std::string& first = entries.front().*field;
  const bool same =
      std::ranges::all_of(entries, [&](const RemoteEntry& entry) { return entry.*field == first; });
  if (same && first.empty()) return;
  auto* value = new ElidedLabel(this, Qt::ElideMiddle);
  value->setObjectName(name);
  value->setText(same ? ToText(first, encoding) : tr("They differ"));
  AddRow(title, value);
}

void EntryFacts::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  PaintSymbol(painter, picture_->geometry(), symbol_, EntryColor(palette(), symbol_));
}

}  // namespace corvane
