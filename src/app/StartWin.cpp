#include "app/StartWin.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <cstdlib>

#include "app/Alerts.h"
#include "app/TambleApp.h"
#include "app/Text.h"
#include "app/Windows.h"
#include "kit/Message.h"
#include "settings/ProcessSettings.h"

namespace corvane {

StartWin::StartWin(TambleApp& app, const QRect& frame) : app_(app) {
  setWindowTitle(tr("Corvane"));
  setGeometry(frame);
  MakeViews();
  MakeMenus();
}

void StartWin::MakeViews() {
  auto* main = new QWidget(this);
  main->setObjectName("StartView");
  setCentralWidget(main);
  const auto field = [main](const char* name, const QString& accessible) {
    auto* edit = new QLineEdit(main);
    edit->setObjectName(name);
    edit->setAccessibleName(accessible);
    return edit;
  };
  host_ = field("Host", tr("Host"));
  user_ = field("User", tr("Username"));
  password_ = field("password", tr("Password"));
  password_->setEchoMode(QLineEdit::Password);
  path_ = field("Path", tr("Path"));
  port_ = field("Port", tr("Port"));
  port_->setText(QStringLiteral("21"));
  port_->setMaximumWidth(port_->fontMetrics().horizontalAdvance("000000000"));
  passive_ = new QCheckBox(tr("Passive C&onnection"), main);
  passive_->setObjectName("Passive");
  auto* connectButton = new QPushButton(tr("&Connect"), main);
  connectButton->setObjectName("connect");
  connectButton->setDefault(true);

  auto* portRow = new QHBoxLayout;
  portRow->addWidget(port_);
  portRow->addStretch();
  portRow->addWidget(passive_);
  auto* portLabel = new QLabel(tr("Po&rt:"), main);
  portLabel->setBuddy(port_);

  auto* form = new QFormLayout;
  form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  form->addRow(tr("&Host:"), host_);
  form->addRow(tr("&Username:"), user_);
  form->addRow(tr("&Password:"), password_);
  form->addRow(tr("P&ath:"), path_);
  form->addRow(portLabel, portRow);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(connectButton);

  auto* layout = new QVBoxLayout(main);
  layout->addLayout(form);
  layout->addStretch();
  layout->addLayout(buttons);

  connect(connectButton, &QPushButton::clicked, this, &StartWin::Connect);
  for (QLineEdit* edit : {host_, user_, password_, path_, port_}) {
    connect(edit, &QLineEdit::returnPressed, this, &StartWin::Connect);
  }
  host_->setFocus();
}

void StartWin::MakeMenus() {
  menuBar()->setObjectName("MainMenuBar");
  QMenu* file = menuBar()->addMenu(tr("&File"));
  file->addAction(tr("&Quit"), QKeySequence("Ctrl+Q"), this, &QWidget::close);
  QMenu* windows = menuBar()->addMenu(tr("&Windows"));
  windows->addAction(tr("&Transfer List"), QKeySequence("Ctrl+X"), this,
                     [this] { app_.PostMessage(Message("SHLG"_what)); });
  connect(windows, &QMenu::aboutToShow, this,
          [this, windows] { AddWindowItems(*windows, 1, app_.WindowList(), nullptr); });
}

void StartWin::Connect() {
  if (host_->text().isEmpty()) {
    Alerts::Show(this,
                 {.title = tr("Warning!"), .text = tr("Please enter the address of the server.")});
    return;
  }
  if (user_->text().isEmpty()) user_->setText(QStringLiteral("anonymous"));
  if (password_->text().isEmpty()) {
    password_->setText(QString::fromStdString(ProcessSettings::Get().DfltPass));
  }
  const std::string port = port_->text().isEmpty() ? "21" : ToBytes(port_->text());
  Message message("OPNC"_what);
  message.AddString("host", ToBytes(host_->text()));
  message.AddString("user", ToBytes(user_->text()));
  message.AddString("pass", ToBytes(password_->text()));
  message.AddString("path", ToBytes(path_->text()));
  message.AddBool("passive", passive_->isChecked());
  message.AddInt16("port",
                   static_cast<std::int16_t>(std::strtol(port.c_str(), nullptr, 10) & 0xFFFF));
  app_.PostMessage(message);
}

void StartWin::closeEvent(QCloseEvent* event) {
  event->accept();
  app_.Quit();
}

}  // namespace corvane
