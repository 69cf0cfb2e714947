#include "app/shared/QuestionBox.h"

#include <QAccessible>
#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <algorithm>

#include "app/shared/LookStyle.h"
#include "app/shared/Password.h"
#include "app/shared/QuestionCard.h"
#include "app/shared/Rule.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"
#include "app/shared/WrappedLabel.h"

namespace corvane {
namespace {

constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kSign = 32;
constexpr int kBeforeButtons = 24;
constexpr int kNarrowest = 416;
constexpr int kWidest = 480;
constexpr int kBesideEachOther = 560;  // of facts in fixed width
constexpr int kWidestExplanation = 400;
constexpr qsizetype kMostButtons = 3;

Alerts::Sign SignOf(QMessageBox::Icon icon) {
  switch (icon) {
    case QMessageBox::Question: return {"question", Tone::Running};
    case QMessageBox::Warning: return {"triangle", Tone::Caution};
    case QMessageBox::Critical: return {"cross-circle", Tone::Bad};
    default: return {"info", Tone::Running};
  }
}

/// What kind of alert it is.
class Sign : public QWidget {
 public:
  Sign(const Alerts::Sign& sign, QWidget* parent) : QWidget(parent), sign_(sign) {
    setFixedSize(kSign, kSign);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    PaintSymbol(painter, rect(), sign_.symbol, ToneOf(palette(), sign_.tone));
  }

 private:
  const Alerts::Sign sign_;
};

/// Keeps the buttons on the screen whatever a server says.
QString Shortened(const QString& text) {
  constexpr qsizetype kMost = 1000;
  return text.size() <= kMost ? text : text.first(kMost) + QChar(0x2026);
}

/// What an alert shows, in the style that is in force.
Wording WordingOf(const Alerts::Question& question, const QWidget& window) {
  const Wording formal{question.title, question.text, {}};
  const QString subject = question.subject.isEmpty()
                              ? window.window()->windowTitle().remove(QStringLiteral("[*]"))
                              : question.subject;
  const bool headed = !question.heading.isEmpty();
  const Wording plain{subject, headed ? question.heading : question.text, question.advice};
  Wording shown = Style::InForce().Worded(formal, plain);
  if (!shown.advice.isEmpty()) return shown;
  const qsizetype first = shown.question.indexOf(QStringLiteral("\n\n"));
  if (first < 0) return shown;
  shown.advice = shown.question.mid(first + 2);
  shown.question.truncate(first);
  return shown;
}

QString WithoutKey(const QString& label) {
  return Label(QKeySequence::mnemonic(label).isEmpty() ? label : QString(label).remove('&'));
}

bool HasChoices(const Alerts::Question& question) {
  return !question.explanations.isEmpty() || question.buttons.size() > kMostButtons;
}

}  // namespace

QuestionBox::QuestionBox(const Alerts::Question& question, QWidget* window)
    : QDialog(window),
      answer_(question.dismissible ? Alerts::kDismissed
                                   : static_cast<int>(question.buttons.size()) - 1) {
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(kMargin, kMargin + kGap / 2, kMargin, kMargin);
  layout->setHorizontalSpacing(kMargin);
  layout->setVerticalSpacing(kBeforeButtons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(new Sign(question.sign.value_or(SignOf(question.icon)), this), 0, 0,
                    Qt::AlignTop);
  layout->addLayout(MakeContents(question), 0, 1);
  layout->addLayout(MakeButtons(question), 1, 0, 1, 2);
  if (choices_ != nullptr) ShowChosen();
  (field_ != nullptr ? static_cast<QWidget*>(field_) : primary_)->setFocus();
}

QLayout* QuestionBox::MakeContents(const Alerts::Question& question) {
  const Wording wording = WordingOf(question, *parentWidget());
  setWindowTitle(wording.title);
  setAccessibleName(wording.question);
  setAccessibleDescription(wording.advice.isEmpty() ? question.detail : wording.advice);
  auto* contents = new QVBoxLayout;
  contents->setSpacing(kGap);
  auto* heading = new WrappedLabel(Shortened(wording.question), this);
  heading->setFont(Bold(font(), 110));
  auto* advice = new WrappedLabel(
      Shortened(wording.advice.isEmpty() ? question.detail : wording.advice), this);
  auto* choices = HasChoices(question) ? MakeChoices(question) : nullptr;
  int width =
      std::clamp(std::max(heading->NaturalWidth(), advice->NaturalWidth()), kNarrowest, kWidest);
  if (choices != nullptr) width = std::max(width, choices->sizeHint().width());
  width = std::max(width, QuestionCard::LeastWidth(question.facts, question.fixedFact));
  if (question.fixedFact > 0 && question.facts.front().size() > 2)
    width = std::max(width, kBesideEachOther);
  for (WrappedLabel* label : {heading, advice}) label->WrapAt(width);
  contents->addWidget(heading);
  contents->addWidget(advice);
  advice->setHidden(advice->text().isEmpty());
  if (QWidget* card = MakeCard(question, wording, width); card != nullptr) {
    contents->addSpacing(kGap);
    contents->addWidget(card);
  }
  if (!question.note.isEmpty()) {
    auto* note = new WrappedLabel(question.note, this);
    note->SetSecondary();
    note->WrapAt(width);
    contents->addWidget(note);
  }
  if (!question.field.isEmpty()) contents->addLayout(MakeField(question));
  if (choices != nullptr) contents->addLayout(choices);
  if (!question.tick.isEmpty()) {
    if (question.facts.empty()) contents->addSpacing(kGap);
    contents->addWidget(new Rule(Qt::Horizontal, this));
    tick_ = new QCheckBox(question.tick, this);
    tick_->setMinimumHeight(LookStyle::kControlHeight);
    tick_->setChecked(question.ticks);
    contents->addWidget(tick_);
  }
  return contents;
}

// A detail that is not shown above stands in the card; null where nothing does.
QWidget* QuestionBox::MakeCard(const Alerts::Question& question, const Wording& wording,
                               int width) {
  std::vector<QStringList> facts = question.facts;
  if (!wording.advice.isEmpty() && !question.detail.isEmpty()) {
    facts.push_back({Shortened(question.detail)});
  }
  return facts.empty() ? nullptr : new QuestionCard(facts, question.fixedFact, width, this);
}

QLayout* QuestionBox::MakeField(const Alerts::Question& question) {
  constexpr int kAfterLabel = 12;
  field_ = new Password(this);
  field_->setObjectName("Secret");
  field_->setAccessibleName(QString(question.field).remove('&').remove(':'));
  auto* label = new QLabel(question.field, this);
  label->setBuddy(field_);
  auto* row = new QHBoxLayout;
  row->setSpacing(kAfterLabel);
  row->addWidget(label);
  row->addWidget(field_, 1);
  return row;
}

QLayout* QuestionBox::MakeChoices(const Alerts::Question& question) {
  choices_ = new QButtonGroup(this);
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(kBeforeButtons);
  grid->setVerticalSpacing(0);
  grid->setColumnStretch(1, 1);
  for (int i = 0; i + 1 < static_cast<int>(question.buttons.size()); ++i) {
    auto* choice = new QRadioButton(question.buttons[i], this);
    choice->setMinimumHeight(LookStyle::kControlHeight);
    choice->setChecked(i == question.preset);
    choices_->addButton(choice, i);
    if (const auto why = question.unavailable.find(i); why != question.unavailable.end()) {
      choice->setEnabled(false);
      SetTip(*choice, why->second);
    }
    grid->addWidget(choice, i, 0);
    if (i >= question.explanations.size()) continue;
    auto* explanation = new WrappedLabel(question.explanations[i], this);
    explanation->SetSecondary();
    explanation->setAlignment(Qt::AlignVCenter);
    explanation->WrapAt(std::min(explanation->NaturalWidth(), kWidestExplanation));
    choice->setAccessibleDescription(explanation->text());
    grid->addWidget(explanation, i, 1);
  }
  connect(choices_, &QButtonGroup::idToggled, this, &QuestionBox::ShowChosen);
  return grid;
}

QLayout* QuestionBox::MakeButtons(const Alerts::Question& question) {
  auto* row = new QHBoxLayout;
  row->setSpacing(kGap);
  row->addStretch();
  const auto last = static_cast<int>(question.buttons.size()) - 1;
  for (int i = 0; i <= last; ++i) {
    if (i == question.preset || (choices_ != nullptr && i != last)) continue;
    auto* button = new QPushButton(question.buttons[i], this);
    connect(button, &QPushButton::clicked, this, [this, i] { Press(i); });
    row->addWidget(button);
  }
  primary_ = new QPushButton(question.buttons[question.preset], this);
  SetPrimary(*primary_);
  connect(primary_, &QPushButton::clicked, this, [this, preset = question.preset] {
    Press(choices_ != nullptr ? choices_->checkedId() : preset);
  });
  row->addWidget(primary_);
  return row;
}

void QuestionBox::ShowChosen() {
  primary_->setText(WithoutKey(choices_->checkedButton()->text()));
}

void QuestionBox::Press(int button) {
  answer_ = button;
  accept();
}

bool QuestionBox::Ticked() const {
  return tick_ != nullptr && tick_->isChecked();
}

std::string QuestionBox::Entered() const {
  return field_ != nullptr ? field_->actualText() : std::string();
}

void QuestionBox::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

}  // namespace corvane
