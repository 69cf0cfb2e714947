#include "app/ShortCutEditWindow.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/Alerts.h"
#include "app/Frames.h"
#include "app/Password.h"
#include "app/ShortCutWindow.h"
#include "app/TambleApp.h"
#include "app/Text.h"
#include "app/Windows.h"
#include "settings/ShortcutStore.h"

namespace corvane {

ShortCutEditWindow::ShortCutEditWindow(TambleApp& app) : app_(app) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName("MainView");
  MakeViews();
  AddCloseKey(this);
}

void ShortCutEditWindow::MakeViews() {
  const auto field = [this](QLineEdit* edit, const char* name, const QString& accessible) {
    edit->setObjectName(name);
    edit->setAccessibleName(accessible);
    edit->setMinimumWidth(fontMetrics().horizontalAdvance('n') * 28);
    connect(edit, &QLineEdit::returnPressed, this, &ShortCutEditWindow::Save);
    return edit;
  };
  label_ = field(new QLineEdit(this), "Label", tr("Label"));
  host_ = field(new QLineEdit(this), "Host", tr("Host"));
  user_ = field(new QLineEdit(this), "User", tr("Username"));
  password_ = new Password(this);
  field(password_, "password", tr("Password"));
  path_ = field(new QLineEdit(this), "Path", tr("Path"));
  port_ = field(new QLineEdit(this), "Port", tr("Port"));
  port_->setMinimumWidth(0);
  port_->setMaximumWidth(port_->fontMetrics().horizontalAdvance("000000000"));
  passive_ = new QCheckBox(tr("Passive C&onnection"), this);
  passive_->setObjectName("Passive");

  auto* portRow = new QHBoxLayout;
  portRow->addWidget(port_);
  portRow->addStretch();
  portRow->addWidget(passive_);
  auto* portLabel = new QLabel(tr("Po&rt:"), this);
  portLabel->setBuddy(port_);
  auto* form = new QFormLayout;
  form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  form->addRow(tr("&Label:"), label_);
  form->addRow(tr("&Host:"), host_);
  form->addRow(tr("&Username:"), user_);
  form->addRow(tr("&Password:"), password_);
  form->addRow(tr("Pa&th:"), path_);
  form->addRow(portLabel, portRow);

  auto* cancel = new QPushButton(tr("Cancel"), this);
  cancel->setObjectName("cancel");
  ok_ = new QPushButton(this);
  ok_->setObjectName("ok");
  ok_->setDefault(true);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cancel);
  buttons->addWidget(ok_);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addStretch();
  layout->addLayout(buttons);
  connect(cancel, &QPushButton::clicked, this, &QWidget::close);
  connect(ok_, &QPushButton::clicked, this, [this] { MessageReceived(Message("SVPF"_what)); });
}

void ShortCutEditWindow::MessageReceived(const Message& message) {
  if (message.what == "SVPF"_what) Save();
}

void ShortCutEditWindow::Begin(const Shortcut& record) {
  change_ = {};
  setWindowTitle(tr("Add Shortcut"));
  ok_->setText(tr("&Add"));
  Fill(record);
}

void ShortCutEditWindow::Edit(const Shortcut& record, Change change) {
  change_ = std::move(change);
  setWindowTitle(tr("Edit Shortcut"));
  ok_->setText(tr("&Change"));
  Fill(record);
}

void ShortCutEditWindow::PlaceBeside(const QWidget& opener) {
  adjustSize();
  const QPoint place = opener.frameGeometry().topLeft() + QPoint(60, 60);
  move(Frames::OnScreen(QRect(place, size())).topLeft());
}

void ShortCutEditWindow::Fill(const Shortcut& record) {
  record_ = record;
  label_->setText(ToText(record.label));
  host_->setText(ToText(record.host));
  user_->setText(ToText(record.user));
  password_->SetActualText(record.pass);
  path_->setText(ToText(record.path));
  port_->setText(record.port.empty() ? QStringLiteral("21") : ToText(record.port));
  passive_->setChecked(record.passive);
  label_->setFocus();
}

Shortcut ShortCutEditWindow::Entered() const {
  Shortcut entered{.label = EditedBytes(label_->text(), record_.label),
                   .host = EditedBytes(host_->text(), record_.host),
                   .user = EditedBytes(user_->text(), record_.user),
                   .pass = password_->actualText(),
                   .path = EditedBytes(path_->text(), record_.path),
                   .port = port_->text().isEmpty() ? "21" : ToBytes(port_->text()),
                   .passive = passive_->isChecked()};
  if (entered.label.empty()) entered.label = entered.host;
  return entered;
}

// The stored form has no way to write a character that it uses itself.
void ShortCutEditWindow::Check(const Shortcut& entered, std::function<void()> then) {
  if (entered.host.empty()) {
    Alerts::Show(this,
                 {.title = tr("Warning!"), .text = tr("Please enter the address of the server.")});
  } else if (ShortcutStore::Survives(entered)) {
    then();
  } else {
    Alerts::Show(this,
                 {.title = tr("Warning!"),
                  .text = tr("This shortcut would not come back as you entered it."),
                  .detail = tr("A label cannot hold a \"*\", and none of the other fields a \":\"; "
                               "username, password and host hold no \"@\" or \"/\" either."),
                  .buttons = {tr("&Save Anyway"), tr("&Go Back")},
                  .preset = 1},
                 [then = std::move(then)](int button) {
                   if (button == 0) then();
                 });
  }
}

void ShortCutEditWindow::Save() {
  const Shortcut entered = Entered();
  Check(entered, [this, entered] {
    if (AddMode()) return Add(entered);
    change_(entered);
    close();
  });
}

void ShortCutEditWindow::Add(const Shortcut& entered) {
  const ShortcutStore::Added added = ShortcutStore::Add(entered);
  if (!added.failure.empty()) {
    Alerts::Show(this, {.title = tr("Warning!"),
                        .text = tr("The shortcut could not be saved."),
                        .detail = ToText(added.failure)});
    return;
  }
  Message item("NWST"_what);
  item.AddString("label", entered.label);
  item.AddInt32("index", added.index);
  app_.PostMessage(item);
  if (!app_.Shortcuts().isNull()) {
    Message row("NWST"_what);
    row.AddString("url", ShortcutStore::StoredForm(entered));
    app_.Shortcuts()->MessageReceived(row);
  }
  close();
}

void ShortCutEditWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace corvane
