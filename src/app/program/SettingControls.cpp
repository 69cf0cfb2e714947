#include "app/program/SettingControls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Password.h"
#include "app/shared/Rule.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kBoxHeight = 24;
constexpr int kIndent = 24;  // of what belongs to a box

QString Translate(const char* text) {
  return *text == '\0' ? QString() : QCoreApplication::translate("corvane::PrefWindow", text);
}

/// What a label calls its field.
QString NameIn(const QString& label) {
  return QString(label).remove('&').remove(':').trimmed();
}

std::int32_t EnteredNumber(const Setting& setting, QWidget* control) {
  if (setting.asButtons) return control->findChild<QButtonGroup*>()->checkedId();
  if (setting.range.most > 0) return static_cast<QSpinBox*>(control)->value();
  return static_cast<QComboBox*>(control)->currentData().toInt();
}

void AddRule(QFormLayout* form) {
  auto* space = new QVBoxLayout;
  space->setContentsMargins(0, 8, 0, 8);
  space->addWidget(new Rule(Qt::Horizontal, nullptr));
  form->addRow(space);
}

}  // namespace

SettingControls::SettingControls(const SettingsValues& shown, QObject* parent)
    : QObject(parent), shown_(shown) {}

QFormLayout* SettingControls::MakeForm(QWidget* page) {
  auto* form = new QFormLayout(page);
  form->setHorizontalSpacing(12);
  form->setVerticalSpacing(8);
  form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  return form;
}

void SettingControls::AddRow(QFormLayout* form, const QString& label, QWidget* field,
                             QWidget* whole) {
  auto* name = new QLabel(label);
  name->setBuddy(field);
  name->setMinimumHeight(LookStyle::kControlHeight);
  form->addRow(name, whole != nullptr ? whole : field);
}

void SettingControls::AddHeading(QFormLayout* form, const QString& text) {
  constexpr int kAbove = 8;
  auto* heading = new QLabel(text);
  heading->setFont(Bold(heading->font()));
  if (form->rowCount() > 0) heading->setContentsMargins(0, kAbove, 0, 0);
  form->addRow(heading);
}

void SettingControls::Add(QFormLayout* form, const Setting& setting, QWidget* beside) {
  if (setting.opensGroup) AddRule(form);
  if (*setting.heading != '\0') AddHeading(form, Translate(setting.heading));
  const QString hint = Translate(setting.hint);
  QWidget* control = nullptr;
  if (const auto* text = std::get_if<std::string SettingsValues::*>(&setting.variable)) {
    control = AddField(form, setting, shown_.**text, beside);
  } else if (const auto* flag = std::get_if<bool SettingsValues::*>(&setting.variable)) {
    control =
        AddBox(form, Translate(setting.label), setting.hintBelow ? QString() : hint, shown_.**flag);
  } else {
    const auto* number = std::get_if<std::int32_t SettingsValues::*>(&setting.variable);
    control = setting.asButtons        ? AddButtons(form, setting, shown_.**number)
              : setting.range.most > 0 ? AddNumber(form, setting, shown_.**number)
                                       : AddList(form, setting, shown_.**number);
  }
  if (setting.hintBelow) {
    auto* below = new HintLabel(hint);
    const bool box = qobject_cast<QCheckBox*>(control) != nullptr;
    below->setContentsMargins(box ? kIndent : 0, 0, 0, box ? 8 : 0);
    control->setAccessibleDescription(hint);
    form->addRow(below);
  }
  control->setObjectName(setting.control);
  controls_.emplace_back(&setting, control);
}

QWidget* SettingControls::AddField(QFormLayout* form, const Setting& setting,
                                   const std::string& text, QWidget* beside) {
  const QString label = Translate(setting.label);
  QLineEdit* field = nullptr;
  if (setting.secret) {
    auto* hidden = new Password;
    hidden->SetActualText(text);
    field = hidden;
  } else {
    field = new QLineEdit(ToText(text));
    field->setCursorPosition(0);
  }
  field->setAccessibleName(NameIn(label));
  field->setPlaceholderText(Translate(setting.hint));
  connect(field, &QLineEdit::returnPressed, this, &SettingControls::Confirmed);
  connect(field, &QLineEdit::textChanged, this, &SettingControls::Edited);
  if (beside == nullptr) {
    AddRow(form, label, field);
    return field;
  }
  auto* whole = new QWidget;
  auto* row = new QHBoxLayout(whole);
  row->setContentsMargins({});
  row->setSpacing(8);
  row->addWidget(field);
  row->addWidget(beside);
  AddRow(form, label, field, whole);
  return field;
}

QCheckBox* SettingControls::AddBox(QFormLayout* form, const QString& label, const QString& hint,
                                   bool checked) {
  auto* box = new QCheckBox(label);
  box->setToolTip(hint);
  box->setChecked(checked);
  box->setMinimumHeight(kBoxHeight);
  form->addRow(box);
  return box;
}

QWidget* SettingControls::AddNumber(QFormLayout* form, const Setting& setting,
                                    std::int32_t number) {
  const SettingsRange& range = setting.range;
  const QString label = Translate(setting.label);
  auto* field = new QSpinBox;
  field->setRange(range.least, range.most);
  field->setSuffix(Translate(range.unit));
  field->setSpecialValueText(Translate(range.leastText));
  field->setValue(number);
  field->setAlignment(Qt::AlignRight);
  field->setAccessibleName(NameIn(label));
  field->findChild<QLineEdit*>()->setAccessibleName(NameIn(label));
  field->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  constexpr int kLeastWidth = 64;
  constexpr int kLarge = 10'000;
  field->setMinimumWidth(kLeastWidth);
  if (range.most > kLarge) field->setSingleStep(100);
  if (setting.follows) {
    auto* between = new QLabel(label);
    between->setBuddy(field);
    numbers_->insertWidget(numbers_->count() - 1, between);
    numbers_->insertWidget(numbers_->count() - 1, field);
    return field;
  }
  auto* whole = new QWidget;
  numbers_ = new QHBoxLayout(whole);
  numbers_->setContentsMargins({});
  numbers_->setSpacing(8);
  numbers_->addWidget(field);
  numbers_->addStretch();
  AddRow(form, label, field, whole);
  return field;
}

// A value that is no choice shows as the next bigger one.
QWidget* SettingControls::AddList(QFormLayout* form, const Setting& setting, std::int32_t chosen) {
  const QString label = Translate(setting.label);
  auto* list = new QComboBox;
  list->setAccessibleName(NameIn(label));
  int fitting = 0;
  for (const auto& [value, text] : setting.choices) {
    list->addItem(Translate(text), value);
    if (value < chosen) {
      fitting = std::min(list->count(), static_cast<int>(setting.choices.size()) - 1);
    }
  }
  list->setCurrentIndex(fitting);
  list->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  AddRow(form, label, list);
  return list;
}

// A value that is no choice shows as the next smaller one.
QWidget* SettingControls::AddButtons(QFormLayout* form, const Setting& setting,
                                     std::int32_t chosen) {
  auto* whole = new QWidget;
  auto* group = new QButtonGroup(whole);
  auto* column = new QVBoxLayout(whole);
  column->setContentsMargins({});
  column->setSpacing(form->verticalSpacing());
  for (const auto& [value, text] : setting.choices) {
    auto* button = new QRadioButton(Translate(text));
    button->setMinimumHeight(kBoxHeight);
    group->addButton(button, value);
    column->addWidget(button);
    if (group->checkedButton() == nullptr || value <= chosen) button->setChecked(true);
  }
  form->addRow(whole);
  return whole;
}

QWidget* SettingControls::ControlOf(const Setting::Variable& variable) const {
  const auto found = std::ranges::find_if(
      controls_, [&](const auto& entry) { return entry.first->variable == variable; });
  return found != controls_.end() ? found->second : nullptr;
}

QLineEdit* SettingControls::FieldOf(std::string SettingsValues::*text) const {
  return static_cast<QLineEdit*>(ControlOf(text));
}

QCheckBox* SettingControls::BoxOf(bool SettingsValues::*flag) const {
  return static_cast<QCheckBox*>(ControlOf(flag));
}

QLineEdit* SettingControls::FocusedFieldOf(SettingsTab tab) const {
  for (const auto& [setting, control] : controls_) {
    if (setting->tab == tab && control == control->window()->focusWidget()) {
      return qobject_cast<QLineEdit*>(control);
    }
  }
  return nullptr;
}

SettingsValues SettingControls::Entered() const {
  SettingsValues entered = shown_;
  for (const auto& [setting, control] : controls_) {
    if (const auto* text = std::get_if<std::string SettingsValues::*>(&setting->variable)) {
      std::string& value = entered.**text;
      value = setting->secret ? static_cast<Password*>(control)->actualText()
                              : EditedBytes(static_cast<QLineEdit*>(control)->text(), value);
    } else if (const auto* flag = std::get_if<bool SettingsValues::*>(&setting->variable)) {
      entered.** flag = static_cast<QCheckBox*>(control)->isChecked();
    } else {
      const auto* number = std::get_if<std::int32_t SettingsValues::*>(&setting->variable);
      entered.** number = EnteredNumber(*setting, control);
    }
  }
  return entered;
}

}  // namespace corvane
