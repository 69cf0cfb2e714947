#include "app/program/PrefWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "app/desktop/Autostart.h"
#include "app/shared/Alerts.h"
#include "app/shared/FaultLine.h"
#include "app/shared/Frames.h"
#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Rule.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Windows.h"
#include "settings/StoredSettings.h"
#include "util/PortFrom.h"

namespace corvane {
namespace {

constexpr QSize kSize(576, 624);
constexpr int kBoxHeight = 24;
constexpr int kIndent = 24;  // of what belongs to a box

/// The rows of a tab.
QFormLayout* MakeForm(QWidget* page) {
  auto* form = new QFormLayout(page);
  form->setHorizontalSpacing(12);
  form->setVerticalSpacing(8);
  form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  return form;
}

void AddRow(QFormLayout* form, const QString& label, QWidget* field, QLayout* row = nullptr) {
  auto* name = new QLabel(label);
  name->setBuddy(field);
  name->setMinimumHeight(LookStyle::kControlHeight);
  if (row != nullptr) {
    form->addRow(name, row);
  } else {
    form->addRow(name, field);
  }
}

void AddRule(QFormLayout* form) {
  auto* space = new QVBoxLayout;
  space->setContentsMargins(0, 8, 0, 8);
  space->addWidget(new Rule(Qt::Horizontal, nullptr));
  form->addRow(space);
}

QString Translate(const char* text) {
  return *text == '\0' ? QString() : QCoreApplication::translate("corvane::PrefWindow", text);
}

}  // namespace

PrefWindow::PrefWindow()
    : QWidget(nullptr, kFixedWindow),
      shown_(StoredSettings::ForEditing()),
      tabs_(new QTabWidget(this)),
      fault_(new FaultLine(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Corvane: Preferences"));
  tabs_->setObjectName("tab_view");
  tabs_->addTab(MakeMisc(), tr("&Misc"));
  tabs_->addTab(MakeSound(), tr("So&und"));
  tabs_->addTab(MakeProxy(), tr("Pro&xy"));
  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(16);
  layout->addWidget(tabs_);
  layout->addWidget(MakeButtons());
  setFixedSize(layout->totalMinimumSize().expandedTo(kSize));
  move(Frames::OnScreen(QRect(QPoint(250, 92), size())).topLeft());
  AddCloseKeys(this);
  filled_ = Entered();
  FieldOf(&SettingsValues::DfltPass)->setFocus();
}

// The field, box or list of one setting, filled with what is in force.
void PrefWindow::Add(QFormLayout* form, const Setting& setting) {
  const QString label = Translate(setting.label);
  const QString hint = Translate(setting.hint);
  QWidget* control = nullptr;
  if (const auto* text = std::get_if<std::string SettingsValues::*>(&setting.variable)) {
    control = AddField(form, setting, shown_.**text);
  } else if (const auto* flag = std::get_if<bool SettingsValues::*>(&setting.variable)) {
    control = AddBox(form, label, setting.hintBelow ? QString() : hint, shown_.**flag);
  } else {
    const auto* number = std::get_if<std::int32_t SettingsValues::*>(&setting.variable);
    control = AddList(form, label, setting.choices, shown_.**number);
  }
  if (setting.hintBelow) {
    auto* below = new HintLabel(hint);
    below->setContentsMargins(kIndent, 0, 0, 8);
    control->setAccessibleDescription(hint);
    form->addRow(below);
  }
  control->setObjectName(setting.control);
  controls_.emplace_back(&setting, control);
}

QWidget* PrefWindow::ControlOf(const Setting::Variable& variable) const {
  const auto found = std::ranges::find_if(
      controls_, [&](const auto& entry) { return entry.first->variable == variable; });
  return found != controls_.end() ? found->second : nullptr;
}

QLineEdit* PrefWindow::FieldOf(std::string SettingsValues::*text) const {
  return static_cast<QLineEdit*>(ControlOf(text));
}

QCheckBox* PrefWindow::BoxOf(bool SettingsValues::*flag) const {
  return static_cast<QCheckBox*>(ControlOf(flag));
}

void PrefWindow::AddTab(QFormLayout* form, SettingsTab tab) {
  for (const Setting& setting : AllSettings()) {
    if (setting.tab != tab) continue;
    if (setting.opensGroup) AddRule(form);
    Add(form, setting);
    if (setting.variable == Setting::Variable(&SettingsValues::notify)) AddTrayBox(form);
  }
}

QLineEdit* PrefWindow::AddField(QFormLayout* form, const Setting& setting,
                                const std::string& text) {
  const QString label = Translate(setting.label);
  auto* field = new QLineEdit(ToText(text));
  field->setAccessibleName(QString(label).remove('&').remove(':').trimmed());
  field->setPlaceholderText(Translate(setting.hint));
  field->setCursorPosition(0);
  connect(field, &QLineEdit::returnPressed, this, &PrefWindow::Save);
  connect(field, &QLineEdit::textChanged, fault_, &FaultLine::Clear);
  if (setting.variable != Setting::Variable(&SettingsValues::DwnldDir)) {
    AddRow(form, label, field);
    return field;
  }
  auto* row = new QHBoxLayout;
  row->setSpacing(8);
  row->addWidget(field);
  row->addWidget(MakeButton("findfolder", tr("Select &Folder"), "FRTR"_what));
  AddRow(form, label, field, row);
  return field;
}

QCheckBox* PrefWindow::AddBox(QFormLayout* form, const QString& label, const QString& hint,
                              bool checked) {
  auto* box = new QCheckBox(label);
  box->setToolTip(hint);
  box->setChecked(checked);
  box->setMinimumHeight(kBoxHeight);
  form->addRow(box);
  return box;
}

void PrefWindow::AddTrayBox(QFormLayout* form) {
  tray_ = AddBox(form, tr("Show &in the tray at login."),
                 tr("An icon whose menu opens your shortcuts."), Autostart::IsSet());
  tray_->setObjectName("ShowInTray");
}

// A value that is no choice shows as the next bigger one.
QComboBox* PrefWindow::AddList(QFormLayout* form, const QString& label,
                               std::span<const SettingsChoice> choices, std::int32_t chosen) {
  auto* list = new QComboBox;
  list->setAccessibleName(QString(label).remove('&').remove(':'));
  int fitting = 0;
  for (const auto& [value, text] : choices) {
    list->addItem(Translate(text), value);
    if (value < chosen) fitting = std::min(list->count(), static_cast<int>(choices.size()) - 1);
  }
  list->setCurrentIndex(fitting);
  list->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  AddRow(form, label, list);
  return list;
}

// A click leaves the focus in the field that the button is about.
QPushButton* PrefWindow::MakeButton(const char* name, const QString& label, std::uint32_t what) {
  auto* button = new QPushButton(label);
  button->setObjectName(name);
  button->setFocusPolicy(Qt::TabFocus);
  button->setAutoDefault(true);
  connect(button, &QPushButton::clicked, this, [this, what] { MessageReceived(Message(what)); });
  return button;
}

QWidget* PrefWindow::MakeMisc() {
  auto* page = new QWidget;
  AddTab(MakeForm(page), SettingsTab::Misc);
  return page;
}

QWidget* PrefWindow::MakeSound() {
  auto* page = new QWidget;
  QFormLayout* form = MakeForm(page);
  AddTab(form, SettingsTab::Sound);
  auto* info = new HintLabel(tr("Select the TextBox you want to set the sound for first."));
  info->setObjectName("info");
  auto* row = new QHBoxLayout;
  row->setSpacing(16);
  row->addWidget(info, 1, Qt::AlignVCenter);
  row->addWidget(MakeButton("SelectUPSound", tr("S&elect Sound"), "SSND"_what));
  form->addRow(row);
  return page;
}

QWidget* PrefWindow::MakeProxy() {
  auto* page = new QWidget;
  proxy_ = MakeForm(page);
  AddTab(proxy_, SettingsTab::Proxy);
  connect(BoxOf(&SettingsValues::useProxy), &QCheckBox::toggled, this,
          [this] { MessageReceived(Message("prxy"_what)); });
  ProxyToggled();
  return page;
}

QWidget* PrefWindow::MakeButtons() {
  auto* row = new QWidget;
  auto* cancel = new QPushButton(tr("&Cancel"));
  cancel->setObjectName("cancel");
  connect(cancel, &QPushButton::clicked, this, &QWidget::close);
  auto* save = new QPushButton(tr("&Save"));
  save->setObjectName("save");
  connect(save, &QPushButton::clicked, this, [this] { MessageReceived(Message("SVPF"_what)); });
  for (QPushButton* button : {cancel, save}) button->setAutoDefault(true);
  SetPrimary(*save);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins({});
  layout->addStretch();
  layout->addWidget(cancel);
  layout->addWidget(save);
  return row;
}

void PrefWindow::MessageReceived(const Message& message) {
  switch (message.what) {
    case "FRTR"_what: SelectFolder(); break;
    case "SSND"_what: SelectSound(); break;
    case "prxy"_what: ProxyToggled(); break;
    case "SVPF"_what: Save(); break;
    default: break;
  }
}

QFileDialog* PrefWindow::NewPanel(const QString& title) {
  if (!panel_.isNull()) {
    BringForward(panel_);
    return nullptr;
  }
  panel_ = new QFileDialog(this, title);
  panel_->setAttribute(Qt::WA_DeleteOnClose);
  panel_->setModal(false);
  return panel_;
}

void PrefWindow::SelectFolder() {
  QFileDialog* panel = NewPanel(tr("Select Folder"));
  if (panel == nullptr) return;
  panel->setFileMode(QFileDialog::Directory);
  panel->setOption(QFileDialog::ShowDirsOnly);
  panel->setLabelText(QFileDialog::Accept, tr("Select"));
  QLineEdit* folder = FieldOf(&SettingsValues::DwnldDir);
  panel->setDirectory(folder->text());
  connect(panel, &QFileDialog::fileSelected, folder, &QLineEdit::setText);
  BringForward(panel);
}

void PrefWindow::SelectSound() {
  QFileDialog* panel = NewPanel(tr("Select Sound"));
  if (panel == nullptr) return;
  panel->setFileMode(QFileDialog::ExistingFile);
  connect(panel, &QFileDialog::fileSelected, this, &PrefWindow::PutSound);
  BringForward(panel);
}

void PrefWindow::PutSound(const QString& path) {
  for (const auto& [setting, control] : controls_) {
    if (setting->tab != SettingsTab::Sound || control != focusWidget()) continue;
    static_cast<QLineEdit*>(control)->setText(path);
  }
}

void PrefWindow::ProxyToggled() {
  const bool on = BoxOf(&SettingsValues::useProxy)->isChecked();
  const QString why = on ? QString() : tr("In use with “Enable Proxy” alone.");
  for (const auto setting : {&SettingsValues::proxyAddress, &SettingsValues::proxyPort}) {
    QLineEdit* field = FieldOf(setting);
    field->setEnabled(on);
    field->setToolTip(why);
  }
}

SettingsValues PrefWindow::Entered() const {
  SettingsValues entered = shown_;
  for (const auto& [setting, control] : controls_) {
    if (const auto* text = std::get_if<std::string SettingsValues::*>(&setting->variable)) {
      std::string& value = entered.**text;
      value = EditedBytes(static_cast<QLineEdit*>(control)->text(), value);
    } else if (const auto* flag = std::get_if<bool SettingsValues::*>(&setting->variable)) {
      entered.** flag = static_cast<QCheckBox*>(control)->isChecked();
    } else {
      const auto* number = std::get_if<std::int32_t SettingsValues::*>(&setting->variable);
      entered.** number = static_cast<QComboBox*>(control)->currentData().toInt();
    }
  }
  return entered;
}

bool PrefWindow::Changed() const {
  return Entered() != filled_ || tray_->isChecked() != Autostart::IsSet();
}

bool PrefWindow::CheckProxy() {
  fault_->Clear();
  if (!BoxOf(&SettingsValues::useProxy)->isChecked()) return true;
  QLineEdit* host = FieldOf(&SettingsValues::proxyAddress);
  QLineEdit* port = FieldOf(&SettingsValues::proxyPort);
  if (host->text().trimmed().isEmpty()) {
    return RefuseProxy(host, tr("Please enter the address of the proxy."));
  }
  if (PortFrom(ToBytes(port->text())) != 0) return true;
  return RefuseProxy(port, tr("The proxy's port has to be a number from 1 to 65535."));
}

bool PrefWindow::RefuseProxy(QLineEdit* field, const QString& text) {
  tabs_->setCurrentIndex(tabs_->count() - 1);
  fault_->Say(*proxy_, *field, text);
  return false;
}

void PrefWindow::Save() {
  if (!CheckProxy()) return;
  QString problem = tr("The preferences are in force but could not be saved for the next start.");
  Text failure = StoredSettings::Apply(Entered());
  if (const bool tray = tray_->isChecked(); failure.IsEmpty() && tray != Autostart::IsSet()) {
    problem = tr("The preferences are saved, all but what is shown in the tray at login.");
    failure = Text::Raw(Autostart::Set(tray));
  }
  if (failure.IsEmpty()) {
    close();
    return;
  }
  Alerts::Show(this, {.title = tr("Warning!"), .text = problem, .detail = Shown(failure)});
}

}  // namespace corvane
