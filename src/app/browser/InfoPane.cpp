#include "app/browser/InfoPane.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>

#include "app/browser/DirListView.h"
#include "app/shared/ElidedLabel.h"
#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"
#include "remote/Permissions.h"

namespace corvane {
namespace {

constexpr int kPicture = 32;
constexpr qsizetype kLongest = 200;

/// Lets a long name break into lines: behind its dots and dashes, or anywhere where it has none.
QString Breakable(const QString& name) {
  constexpr int kLongWord = 16;
  const QChar here(0x200B);
  QString text;
  int word = 0;
  for (const QChar letter : name.left(kLongest)) {
    if (word >= kLongWord && !letter.isLowSurrogate() && !letter.isMark()) text += here;
    text += letter;
    const bool ends = QStringLiteral("._- ").contains(letter);
    if (ends) text += here;
    word = ends ? 0 : word + 1;
  }
  return name.size() > kLongest ? text + QChar(0x2026) : text;
}

QString Files(int count) {
  return count == 1 ? InfoPane::tr("1 file") : InfoPane::tr("%n files", "", count);
}

QString Directories(int count) {
  return count == 1 ? InfoPane::tr("1 directory") : InfoPane::tr("%n directories", "", count);
}

QString PermissionsText(const std::string& mode) {
  if (Style::InForce().ShowsWholeMode()) return ToText(mode);
  const QString text = ToText(Permissions::WithoutType(mode));
  const std::string octal = Permissions::Octal(mode);
  return octal.empty() ? text : text + "  (" + ToText(octal) + ')';
}

}  // namespace

InfoPane::InfoPane(DirListView& view, QWidget* parent)
    : QWidget(parent),
      view_(view),
      picture_(new QWidget(this)),
      heading_(new QLabel(this)),
      text_(new ElidedLabel(this)) {
  setObjectName("InfoPane");
  picture_->setFixedSize(kPicture, kPicture);
  heading_->setTextFormat(Qt::PlainText);
  heading_->setWordWrap(true);
  heading_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
  text_->SetSecondary(true);
  text_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  heading_->setObjectName("InfoHeading");
  text_->setObjectName("InfoText");
  auto* words = new QVBoxLayout;
  words->setSpacing(4);
  words->addWidget(heading_);
  words->addWidget(text_);
  auto* head = new QHBoxLayout;
  head->setSpacing(12);
  head->addWidget(picture_);
  head->addLayout(words, 1);
  auto* facts = new QGridLayout;
  facts->setHorizontalSpacing(12);
  facts->setVerticalSpacing(8);
  facts->setColumnStretch(1, 1);
  size_ = AddFact(*facts, "Size");
  date_ = AddFact(*facts, "Date");
  permissions_ = AddFact(*facts, "Permissions");
  owner_ = AddFact(*facts, "User");
  group_ = AddFact(*facts, "Group");
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(12);
  layout->addLayout(head);
  layout->addLayout(facts);
  connect(&view_, &DirListView::SelectionChanged, this, &InfoPane::Update);
  connect(&view_.Rows(), &QAbstractItemModel::dataChanged, this, &InfoPane::Update);
  Update();
}

InfoPane::Fact InfoPane::AddFact(QGridLayout& layout, const char* name) {
  const int row = layout.rowCount();
  auto* title = new ElidedLabel(this);
  title->SetSecondary(true);
  title->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  auto* value = new ElidedLabel(this, Qt::ElideMiddle);
  value->setObjectName(name);
  value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  layout.addWidget(title, row, 0);
  layout.addWidget(value, row, 1);
  return {title, value};
}

void InfoPane::ShowFact(const Fact& fact, const QString& title, const QString& value,
                        const QString& tip) {
  fact.title->setText(title);
  fact.value->setText(value);
  fact.value->setToolTip(tip);
  fact.value->setAccessibleName(title + ' ' + value);
  fact.title->setVisible(!value.isEmpty());
  fact.value->setVisible(!value.isEmpty());
}

void InfoPane::ShowHead(const char* symbol, const QString& heading, const QString& text) {
  symbol_ = symbol;
  picture_->setVisible(symbol != nullptr);
  heading_->setFont(Bold(font()));
  heading_->setText(Breakable(heading));
  heading_->setAccessibleName(heading);
  SetTip(*heading_, heading.size() > kLongest ? heading : QString());
  text_->setText(text);
  update();
}

void InfoPane::Update() {
  for (const Fact& fact : {size_, date_, permissions_, owner_, group_}) ShowFact(fact, {}, {});
  const std::vector<int> rows = view_.SelectedRows();
  if (rows.empty() || view_.Sum().Count() == 0) return ShowNothing();
  if (rows.size() == 1) return ShowOne(rows.front());
  ShowSeveral();
}

void InfoPane::ShowNothing() {
  ShowHead(nullptr, Style::InForce().TitlesOfInfo().heading, tr("Nothing is selected."));
}

void InfoPane::ShowOne(int row) {
  const MWListItem& item = view_.Rows().At(row);
  const EntryAttributes& attributes = item.Attributes();
  const Style& style = Style::InForce();
  const InfoTitles titles = style.TitlesOfInfo();
  ShowHead(SymbolOf(item.Kind()), item.NameText(), NameOf(item.Kind()));
  ShowFact(size_, tr("Size"), style.EntrySize(item.Size(), item.SizeText()).trimmed(),
           item.Size() >= 0 ? ExactSize(item.Size()) : QString());
  ShowFact(date_, tr("Date"), style.EntryDate(item.Day(), item.Time(), item.DateText()));
  ShowFact(permissions_, titles.permissions, PermissionsText(attributes.permissions));
  ShowFact(owner_, titles.owner, item.TextOf(attributes.owner));
  ShowFact(group_, titles.group, item.TextOf(attributes.group));
}

void InfoPane::ShowSeveral() {
  const SelectionSum sum = view_.Sum();
  const QString files = sum.files > 0 ? Files(sum.files) : QString();
  const QString directories = sum.directories > 0 ? Directories(sum.directories) : QString();
  const bool both = sum.files > 0 && sum.directories > 0;
  ShowHead("several", tr("%n selected", "", sum.Count()),
           both ? tr("%1, %2", "files, directories").arg(files, directories) : files + directories);
  if (sum.files == 0) return;
  const QString bytes = Style::InForce().FileSize(sum.bytes).trimmed();
  ShowFact(size_, tr("Size"), both ? tr("%1 and %2").arg(bytes, directories) : bytes,
           ExactSize(sum.bytes));
}

void InfoPane::paintEvent(QPaintEvent* /*event*/) {
  if (symbol_ == nullptr) return;
  QPainter painter(this);
  PaintSymbol(painter, picture_->geometry(), symbol_, EntryColor(palette(), symbol_));
}

}  // namespace corvane
