#include "app/program/PrefWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "app/desktop/Autostart.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Windows.h"
#include "settings/StoredSettings.h"

namespace corvane {
namespace {

struct BufferSize {
  const char* label;
  std::int32_t bytes;
};

constexpr std::array kBufferSizes{
    BufferSize{QT_TRANSLATE_NOOP("corvane::PrefWindow", "   8 KB"), 8192},
    BufferSize{QT_TRANSLATE_NOOP("corvane::PrefWindow", " 32 KB"), 32768},
    BufferSize{QT_TRANSLATE_NOOP("corvane::PrefWindow", " 64 KB"), 65536},
    BufferSize{QT_TRANSLATE_NOOP("corvane::PrefWindow", "128 KB"), 131072}};

/// The settings in force, but what is stored of the one that waits for the next start.
SettingsValues Current() {
  SettingsValues values = ProcessSettings::Get();
  values.showwindow = StoredSettings::ShowsTransferWindow();
  if (values.DwnldDir == "empty") values.DwnldDir.clear();
  return values;
}

}  // namespace

PrefWindow::PrefWindow()
    : QWidget(nullptr, kFixedWindow), shown_(Current()), tabs_(new QTabWidget(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Corvane: Preferences"));
  tabs_->setObjectName("tab_view");
  tabs_->addTab(MakeMisc(), tr("&Misc"));
  tabs_->addTab(MakeSound(), tr("So&und"));
  tabs_->addTab(MakeProxy(), tr("Pro&xy"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs_);
  layout->addWidget(MakeButtons());
  layout->setSizeConstraint(QLayout::SetFixedSize);
  move(Frames::OnScreen(QRect(QPoint(250, 92), sizeHint())).topLeft());
  AddCloseKeys(this);
  password_->setFocus();
}

QLineEdit* PrefWindow::AddField(QFormLayout* form, const char* name, const QString& label,
                                const std::string& text) {
  auto* field = new QLineEdit(ToText(text));
  field->setObjectName(name);
  field->setAccessibleName(QString(label).remove('&').remove(':').trimmed());
  field->setMinimumWidth(fontMetrics().horizontalAdvance('n') * 32);
  field->setCursorPosition(0);
  connect(field, &QLineEdit::returnPressed, this, &PrefWindow::Save);
  form->addRow(label, field);
  return field;
}

QCheckBox* PrefWindow::AddBox(QFormLayout* form, const char* name, const QString& label,
                              bool checked) {
  auto* box = new QCheckBox(label);
  box->setObjectName(name);
  box->setChecked(checked);
  form->addRow(box);
  return box;
}

// A click leaves the focus in the field that the button is about.
void PrefWindow::AddButton(QFormLayout* form, const char* name, const QString& label,
                           std::uint32_t what) {
  auto* button = new QPushButton(label);
  button->setObjectName(name);
  button->setFocusPolicy(Qt::TabFocus);
  button->setAutoDefault(true);
  connect(button, &QPushButton::clicked, this, [this, what] { MessageReceived(Message(what)); });
  auto* row = new QHBoxLayout;
  row->addStretch();
  row->addWidget(button);
  form->addRow(row);
}

QWidget* PrefWindow::MakeMisc() {
  auto* page = new QWidget;
  auto* form = new QFormLayout(page);
  password_ = AddField(form, "defaultpass", tr("&Default Password:"), shown_.DfltPass);
  folder_ = AddField(form, "download path", tr("D&ownload Folder:"), shown_.DwnldDir);
  folder_->setPlaceholderText(tr("Ask for each download"));
  AddButton(form, "findfolder", tr("Select &Folder"), "FRTR"_what);
  showTransfers_ =
      AddBox(form, "ShowTranWin", tr("Show &Transfer Window on new transfer."), shown_.showwindow);
  showTransfers_->setToolTip(tr("In force from the next start on."));
  removeItem_ = AddBox(form, "RemoveItem", tr("&Remove transfer item after transfer is done."),
                       shown_.removeItem);
  notify_ = AddBox(form, "Notify", tr("Show a &notification when transfers end."), shown_.notify);
  notify_->setToolTip(tr("Only while no window of Corvane is active."));
  tray_ = AddBox(form, "ShowInTray", tr("Show &in the tray at login."), Autostart::IsSet());
  tray_->setToolTip(tr("An icon whose menu opens your shortcuts."));
  sameConnection_ =
      AddBox(form, "UseSameConnection", tr("&Always use same connection to transfer files."),
             shown_.useSameConnection);
  bufferSize_ = new QComboBox;
  bufferSize_->setObjectName("BufferSize");
  bufferSize_->setAccessibleName(tr("Buffer Size"));
  for (const auto& [label, bytes] : kBufferSizes) bufferSize_->addItem(tr(label), bytes);
  const auto fitting = std::ranges::find_if(
      kBufferSizes, [this](const BufferSize& size) { return shown_.buffersize <= size.bytes; });
  bufferSize_->setCurrentIndex(
      static_cast<int>(std::min(fitting, std::prev(kBufferSizes.end())) - kBufferSizes.begin()));
  form->addRow(tr("&Buffer Size:"), bufferSize_);
  return page;
}

QWidget* PrefWindow::MakeSound() {
  auto* page = new QWidget;
  auto* form = new QFormLayout(page);
  loginSuccess_ = AddField(form, "LoginSuccess", tr("&Login Success:"), shown_.loginSsnd);
  loginFailure_ = AddField(form, "LoginFailure", tr("Login &Failure:"), shown_.loginFsnd);
  upload_ = AddField(form, "Upload Sound", tr("U&pload Sound:"), shown_.upldsnd);
  download_ = AddField(form, "Download Sound", tr("&Download Sound:"), shown_.dwnldsnd);
  AddButton(form, "SelectUPSound", tr("S&elect Sound"), "SSND"_what);
  auto* info = new QLabel(tr("Select the TextBox you want to set the sound for first."));
  info->setObjectName("info");
  form->addRow(info);
  return page;
}

QWidget* PrefWindow::MakeProxy() {
  auto* page = new QWidget;
  auto* form = new QFormLayout(page);
  useProxy_ = AddBox(form, "ProxyCheckBox", tr("&Enable Proxy"), shown_.useProxy);
  proxyHost_ = AddField(form, "ProxyAddr", tr("Proxy &Host :"), shown_.proxyAddress);
  proxyPort_ = AddField(form, "ProxyPort", tr("Proxy &Port :"), shown_.proxyPort);
  connect(useProxy_, &QCheckBox::toggled, this, [this] { MessageReceived(Message("prxy"_what)); });
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
  panel->setDirectory(folder_->text());
  connect(panel, &QFileDialog::fileSelected, folder_, &QLineEdit::setText);
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
  for (QLineEdit* field : {loginSuccess_, loginFailure_, upload_, download_}) {
    if (field == focusWidget()) field->setText(path);
  }
}

void PrefWindow::ProxyToggled() {
  proxyHost_->setEnabled(useProxy_->isChecked());
  proxyPort_->setEnabled(useProxy_->isChecked());
}

SettingsValues PrefWindow::Entered() const {
  SettingsValues entered = shown_;
  const auto take = [](const QLineEdit* field, std::string& value) {
    value = EditedBytes(field->text(), value);
  };
  take(password_, entered.DfltPass);
  take(folder_, entered.DwnldDir);
  entered.showwindow = showTransfers_->isChecked();
  entered.removeItem = removeItem_->isChecked();
  entered.notify = notify_->isChecked();
  entered.useSameConnection = sameConnection_->isChecked();
  entered.buffersize = bufferSize_->currentData().toInt();
  take(loginSuccess_, entered.loginSsnd);
  take(loginFailure_, entered.loginFsnd);
  take(upload_, entered.upldsnd);
  take(download_, entered.dwnldsnd);
  entered.useProxy = useProxy_->isChecked();
  take(proxyHost_, entered.proxyAddress);
  take(proxyPort_, entered.proxyPort);
  return entered;
}

bool PrefWindow::CheckProxy() {
  if (!useProxy_->isChecked()) return true;
  const bool noHost = proxyHost_->text().isEmpty();
  if (!noHost && proxyPort_->text().toUShort() != 0) return true;
  tabs_->setCurrentIndex(tabs_->count() - 1);
  (noHost ? proxyHost_ : proxyPort_)->setFocus();
  Alerts::Show(this, {.title = tr("Warning!"),
                      .text = noHost ? tr("Please enter the address of the proxy.")
                                     : tr("The proxy's port has to be a number from 1 to 65535.")});
  return false;
}

void PrefWindow::Save() {
  if (!CheckProxy()) return;
  QString problem = tr("The preferences are in force but could not be saved for the next start.");
  std::string failure = StoredSettings::Apply(Entered());
  if (const bool tray = tray_->isChecked(); failure.empty() && tray != Autostart::IsSet()) {
    problem = tr("The preferences are saved, all but what is shown in the tray at login.");
    failure = Autostart::Set(tray);
  }
  if (failure.empty()) {
    close();
    return;
  }
  Alerts::Show(this,
               {.title = tr("Warning!"), .text = problem, .detail = Shown(Text::Raw(failure))});
}

}  // namespace corvane
