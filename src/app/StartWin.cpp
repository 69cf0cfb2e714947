#include "app/StartWin.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QLineEdit>
#include <cstdlib>
#include <limits>
#include <optional>

#include "app/Alerts.h"
#include "app/Frames.h"
#include "app/Password.h"
#include "app/PastedUrl.h"
#include "app/ShortcutField.h"
#include "app/TambleApp.h"
#include "app/Text.h"
#include "settings/ProcessSettings.h"
#include "settings/ShortcutStore.h"

namespace corvane {
namespace {

/// The number at the front of a text, 0 when there is none; nothing for one that is no port.
std::optional<std::uint16_t> PortIn(const std::string& text) {
  const long long number = std::strtoll(text.c_str(), nullptr, 10);
  if (number < 0 || number > std::numeric_limits<std::uint16_t>::max()) return {};
  return static_cast<std::uint16_t>(number);
}

}  // namespace

StartWin::StartWin(TambleApp& app, const QRect& frame) : app_(app) {
  setWindowTitle(tr("Corvane"));
  MakeViews();
  setGeometry(frame);
}

StartWin::~StartWin() {
  qApp->disconnect(this);
  Frames::Keep(kMainFrame, *this);
}

void StartWin::Init() {
  MakeMenus();
  ReadShortcuts();
}

void StartWin::MessageReceived(const Message& message) {
  switch (message.what) {
    case "CNNT"_what: Connect(); break;
    case "PASS"_what: passive_ = passiveBox_->isChecked(); break;
    case "ZBOX"_what: ChooseShortcut(message.FindInt32("index").value_or(-1)); break;
    case "REDO"_what: ReadShortcuts(); break;
    case "SHST"_what: app_.ShowShortcuts(); break;
    case "SHPF"_what: app_.ShowPreferences(); break;
    case "COPY"_what: Copy(); break;
    case "PSTE"_what: Paste(); break;
    default: break;
  }
}

void StartWin::Connect() {
  PasteUrl(ToBytes(host_->text()));
  if (host_->text().isEmpty()) {
    Alerts::Show(this,
                 {.title = tr("Warning!"), .text = tr("Please enter the address of the server.")});
    return;
  }
  const auto port = PortIn(port_->text().isEmpty() ? "21" : ToBytes(port_->text()));
  if (!port.has_value()) {
    Alerts::Show(this, {.title = tr("Warning!"),
                        .text = tr("The port has to be a number from 1 to 65535.")});
    port_->setFocus();
    return;
  }
  if (user_->text().isEmpty()) user_->setText(QStringLiteral("anonymous"));
  if (password_->text().isEmpty()) {
    password_->SetActualText(ProcessSettings::Get().DfltPass, 1);
  }
  Message message("OPNC"_what);
  message.AddString("host", EditedBytes(host_->text(), filled_.host));
  message.AddString("user", EditedBytes(user_->text(), filled_.user));
  message.AddString("pass", password_->actualText());
  message.AddString("path", EditedBytes(path_->text(), filled_.path));
  message.AddBool("passive", passive_);
  message.AddInt16("port", static_cast<std::int16_t>(*port));
  app_.PostMessage(message);
}

void StartWin::ReadShortcuts() {
  shortcuts_->Fill(ShortcutStore::ReadForMenu());
}

void StartWin::ChooseShortcut(std::int32_t index) {
  const auto shortcut = ShortcutStore::Read(index);
  Fill(shortcut.value_or(Shortcut()));
  if (!shortcut.has_value()) return;
  passiveBox_->setChecked(shortcut->passive);
  passive_ = shortcut->passive;
  port_->setText(shortcut->port.empty() ? QStringLiteral("21") : ToText(shortcut->port));
}

void StartWin::Fill(const Shortcut& connection) {
  filled_ = connection;
  host_->setText(ToText(connection.host));
  user_->setText(ToText(connection.user));
  password_->SetActualText(connection.pass);
  path_->setText(ToText(connection.path));
}

// False when the text is no URL.
bool StartWin::PasteUrl(std::string_view text) {
  const auto url = PastedUrl::Read(text);
  if (!url.has_value()) return false;
  Fill({.host = url->host, .user = url->user, .pass = url->pass, .path = url->path});
  if (!url->port.empty()) port_->setText(ToText(url->port));
  return true;
}

void StartWin::Copy() {
  if (!field_.isNull()) field_->copy();
}

void StartWin::Paste() {
  if (field_.isNull()) return;
  const std::string clipboardText = ToBytes(QApplication::clipboard()->text());
  if (PasteUrl(clipboardText)) return;
  if (field_ == password_) {
    password_->PasteFrom(QClipboard::Clipboard);
  } else {
    field_->paste();
  }
}

void StartWin::closeEvent(QCloseEvent* event) {
  event->ignore();
  app_.QuitRequested();
}

}  // namespace corvane
