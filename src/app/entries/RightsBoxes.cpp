#include "app/entries/RightsBoxes.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>

#include "app/shared/ElidedLabel.h"
#include "app/shared/LookStyle.h"
#include "remote/Permissions.h"

namespace corvane {
namespace {

constexpr unsigned kFirst = 0400;
constexpr int kNumberWidth = 64;

}  // namespace

RightsBoxes::RightsBoxes(QWidget* parent) : QWidget(parent), number_(new QLineEdit(this)) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins({});
  grid->setSpacing(0);
  grid->setColumnStretch(0, 2);
  for (int column = 0; column < 3; ++column) {
    auto* title = new ElidedLabel(this);
    title->SetSecondary(true);
    title->setAlignment(Qt::AlignCenter);
    grid->addWidget(title, 0, column + 1);
    grid->setColumnStretch(column + 1, 1);
    columns_.at(static_cast<std::size_t>(column)) = title;
  }
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    auto* box = new QCheckBox(this);
    const QString name = QStringLiteral("Right%1").arg(kFirst >> i, 0, 8);
    box->setObjectName(name);
    grid->addWidget(box, static_cast<int>(i / 3) + 1, static_cast<int>(i % 3) + 1, Qt::AlignCenter);
    connect(box, &QCheckBox::stateChanged, this, &RightsBoxes::BoxChanged);
    boxes_.at(i) = box;
  }
  const QStringList rows{tr("Owner"), tr("Group"), tr("Others")};
  for (int row = 0; row < 3; ++row) {
    grid->addWidget(new QLabel(rows[row], this), row + 1, 0);
    grid->setRowMinimumHeight(row + 1, LookStyle::kRowHeight);
  }
  grid->setRowMinimumHeight(0, LookStyle::kRowHeight - 4);
  number_->setObjectName("Octal");
  number_->setFixedWidth(kNumberWidth);
  number_->setMaxLength(4);
  number_->setValidator(
      new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-7]{0,4}")), number_));
  auto* label = new QLabel(tr("As a nu&mber:"), this);
  label->setBuddy(number_);
  grid->setRowMinimumHeight(4, 8);
  grid->addWidget(label, 5, 0);
  grid->addWidget(number_, 5, 1, 1, 3, Qt::AlignRight);
  connect(number_, &QLineEdit::textEdited, this, &RightsBoxes::NumberTyped);
  SetEnters(true);
}

void RightsBoxes::SetEnters(bool enters) {
  columns_[0]->setText(tr("Read"));
  columns_[1]->setText(tr("Write"));
  columns_[2]->setText(enters ? tr("Enter") : tr("Execute"));
  NameBoxes();
}

void RightsBoxes::NameBoxes() {
  const QStringList who{tr("Owner"), tr("Group"), tr("Others")};
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    const QString name = tr("%1: %2", "Owner: Read")
                             .arg(who[static_cast<qsizetype>(i / 3)], columns_.at(i % 3)->text());
    boxes_.at(i)->setAccessibleName(name);
  }
}

void RightsBoxes::Show(const std::vector<std::optional<unsigned>>& rights) {
  bool known = !rights.empty();
  unsigned all = ~0U;
  unsigned any = 0;
  for (const std::optional<unsigned>& one : rights) {
    known = known && one.has_value();
    all &= one.value_or(0);
    any |= one.value_or(0);
  }
  special_ = known ? all & Permissions::kSpecial : 0;
  typedSpecial_ = false;
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    const unsigned bit = kFirst >> i;
    const bool between = !known || ((all ^ any) & bit) != 0;
    const QSignalBlocker quiet(boxes_.at(i));
    boxes_.at(i)->setTristate(between);
    boxes_.at(i)->setCheckState(between            ? Qt::PartiallyChecked
                                : (all & bit) != 0 ? Qt::Checked
                                                   : Qt::Unchecked);
  }
  ShowNumber();
  shown_ = Wanted();
}

void RightsBoxes::LeaveExecute() {
  for (std::size_t i = 2; i < boxes_.size(); i += 3) {
    const QSignalBlocker quiet(boxes_.at(i));
    boxes_.at(i)->setTristate(true);
    boxes_.at(i)->setCheckState(Qt::PartiallyChecked);
  }
  BoxChanged();
}

RightsChange RightsBoxes::Wanted() const {
  RightsChange change;
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    const unsigned bit = kFirst >> i;
    if (boxes_.at(i)->checkState() == Qt::PartiallyChecked) continue;
    change.mask |= bit;
    if (boxes_.at(i)->isChecked()) change.bits |= bit;
  }
  if (!typedSpecial_) return change;
  change.mask |= Permissions::kSpecial;
  change.bits |= special_;
  return change;
}

bool RightsBoxes::IsChanged() const {
  const RightsChange now = Wanted();
  return now.mask != shown_.mask || now.bits != shown_.bits;
}

bool RightsBoxes::IsValid() const {
  const QString text = number_->text();
  const bool between = (Wanted().mask & Permissions::kRights) != Permissions::kRights;
  return (text.isEmpty() && between) || Permissions::FromOctal(text.toStdString()).has_value();
}

void RightsBoxes::ShowNumber() {
  const RightsChange now = Wanted();
  const bool whole = (now.mask & Permissions::kRights) == Permissions::kRights;
  const unsigned bits = (now.bits & Permissions::kRights) | special_;
  number_->setText(whole ? QString::fromStdString(Permissions::Octal(bits)) : QString());
  number_->setPlaceholderText(whole ? QString() : tr("mixed"));
}

void RightsBoxes::BoxChanged() {
  ShowNumber();
  Q_EMIT Changed();
}

void RightsBoxes::NumberTyped(const QString& text) {
  if (const auto bits = Permissions::FromOctal(text.toStdString())) {
    typedSpecial_ = text.size() == 4;
    if (typedSpecial_) special_ = *bits & Permissions::kSpecial;
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
      const QSignalBlocker quiet(boxes_.at(i));
      boxes_.at(i)->setChecked((*bits & (kFirst >> i)) != 0);
    }
  }
  Q_EMIT Changed();
}

}  // namespace corvane
