#include "app/program/PrefWindow.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <utility>

#include "app/desktop/Autostart.h"
#include "app/program/SettingControls.h"
#include "app/program/TrustedList.h"
#include "app/shared/Alerts.h"
#include "app/shared/FaultLine.h"
#include "app/shared/Frames.h"
#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Windows.h"
#include "settings/StoredSettings.h"
#include "util/PortFrom.h"

namespace corvane {
namespace {

constexpr QSize kSize(576, 624);

QFormLayout* RowsOf(const QWidget* page) {
  return static_cast<QFormLayout*>(page->layout());
}

}  // namespace

PrefWindow::PrefWindow(TrustedCertificates trusted)
    : QWidget(nullptr, kFixedWindow),
      trusted_(std::move(trusted)),
      controls_(new SettingControls(StoredSettings::ForEditing(), this)),
      tabs_(new QTabWidget(this)),
      fault_(new FaultLine(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Corvane: Preferences"));
  connect(controls_, &SettingControls::Confirmed, this, &PrefWindow::Save);
  connect(controls_, &SettingControls::Edited, fault_, &FaultLine::Clear);
  MakeTabs();
  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(16);
  layout->addWidget(tabs_);
  layout->addWidget(MakeButtons());
  setFixedSize(layout->totalMinimumSize().expandedTo(kSize));
  move(Frames::OnScreen(QRect(QPoint(250, 92), size())).topLeft());
  AddCloseKeys(this);
  filled_ = controls_->Entered();
  if (filled_.proxyKept && filled_.proxyPassword.empty())
    controls_->FieldOf(&SettingsValues::proxyPassword)
        ->setPlaceholderText(tr("kept in the keyring"));
  controls_->FieldOf(&SettingsValues::DfltPass)->setFocus();
}

void PrefWindow::MakeTabs() {
  proxy_ = MakeProxy();
  tabs_->setObjectName("tab_view");
  tabs_->addTab(MakeTab(SettingsTab::Misc), tr("&Misc"));
  tabs_->addTab(MakeSound(), tr("So&und"));
  tabs_->addTab(proxy_, tr("Pro&xy"));
  tabs_->addTab(MakeTab(SettingsTab::Connections), tr("Conn&ections"));
  tabs_->addTab(MakeTab(SettingsTab::Transfers), tr("Tr&ansfers"));
  tabs_->addTab(MakeSecurity(), tr("Securit&y"));
}

QWidget* PrefWindow::MakeTab(SettingsTab tab) {
  auto* page = new QWidget;
  QFormLayout* form = SettingControls::MakeForm(page);
  for (const Setting& setting : AllSettings()) {
    if (setting.tab != tab) continue;
    const bool folder = setting.variable == Setting::Variable(&SettingsValues::DwnldDir);
    controls_->Add(form, setting,
                   folder ? MakeButton("findfolder", tr("Select &Folder"), "FRTR"_what) : nullptr);
    if (setting.variable != Setting::Variable(&SettingsValues::notify)) continue;
    tray_ =
        SettingControls::AddBox(form, tr("Show &in the tray at login."),
                                tr("An icon whose menu opens your shortcuts."), Autostart::IsSet());
    tray_->setObjectName("ShowInTray");
  }
  return page;
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

QWidget* PrefWindow::MakeSound() {
  QWidget* page = MakeTab(SettingsTab::Sound);
  auto* info = new HintLabel(tr("Select the TextBox you want to set the sound for first."));
  info->setObjectName("info");
  auto* row = new QHBoxLayout;
  row->setSpacing(16);
  row->addWidget(info, 1, Qt::AlignVCenter);
  row->addWidget(MakeButton("SelectUPSound", tr("Select S&ound"), "SSND"_what));
  RowsOf(page)->addRow(row);
  return page;
}

QWidget* PrefWindow::MakeProxy() {
  QWidget* page = MakeTab(SettingsTab::Proxy);
  connect(controls_->BoxOf(&SettingsValues::useProxy), &QCheckBox::toggled, this,
          [this] { MessageReceived(Message("prxy"_what)); });
  ProxyToggled();
  return page;
}

QWidget* PrefWindow::MakeSecurity() {
  QWidget* page = MakeTab(SettingsTab::Security);
  SettingControls::AddHeading(RowsOf(page), tr("Certificates that you trust"));
  certificates_ = new TrustedList(trusted_);
  RowsOf(page)->addRow(certificates_);
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
  QLineEdit* folder = controls_->FieldOf(&SettingsValues::DwnldDir);
  panel->setDirectory(folder->text());
  connect(panel, &QFileDialog::fileSelected, folder, &QLineEdit::setText);
  BringForward(panel);
}

void PrefWindow::SelectSound() {
  QFileDialog* panel = NewPanel(tr("Select Sound"));
  if (panel == nullptr) return;
  panel->setFileMode(QFileDialog::ExistingFile);
  connect(panel, &QFileDialog::fileSelected, this, [this](const QString& path) {
    QLineEdit* field = controls_->FocusedFieldOf(SettingsTab::Sound);
    if (field != nullptr) field->setText(path);
  });
  BringForward(panel);
}

void PrefWindow::ProxyToggled() {
  const bool on = controls_->BoxOf(&SettingsValues::useProxy)->isChecked();
  const QString why = on ? QString() : tr("In use with “Enable Proxy” alone.");
  for (const Setting& setting : AllSettings()) {
    const bool box = setting.variable == Setting::Variable(&SettingsValues::useProxy);
    if (setting.tab != SettingsTab::Proxy || box) continue;
    QWidget* control = controls_->ControlOf(setting.variable);
    control->setEnabled(on);
    control->setToolTip(why);
  }
}

bool PrefWindow::Changed() const {
  return controls_->Entered() != filled_ || certificates_->Changed() ||
         tray_->isChecked() != Autostart::IsSet();
}

bool PrefWindow::CheckProxy() {
  fault_->Clear();
  if (!controls_->BoxOf(&SettingsValues::useProxy)->isChecked()) return true;
  QLineEdit* host = controls_->FieldOf(&SettingsValues::proxyAddress);
  QLineEdit* port = controls_->FieldOf(&SettingsValues::proxyPort);
  if (host->text().trimmed().isEmpty()) {
    return RefuseProxy(host, tr("Please enter the address of the proxy."));
  }
  if (PortFrom(ToBytes(port->text())) != 0) return true;
  return RefuseProxy(port, tr("The proxy's port has to be a number from 1 to 65535."));
}

bool PrefWindow::RefuseProxy(QLineEdit* field, const QString& text) {
  tabs_->setCurrentWidget(proxy_);
  fault_->Say(*RowsOf(proxy_), *field, text);
  return false;
}

void PrefWindow::Save() {
  if (!CheckProxy()) return;
  QString problem = tr("The preferences are in force but could not be saved for the next start.");
  certificates_->Save();
  Text failure = StoredSettings::Apply(controls_->Entered());
  Q_EMIT Saved();
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
