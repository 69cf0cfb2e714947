#include "app/connect/StartWin.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QLineEdit>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "app/connect/ConnectHost.h"
#include "app/connect/ConnectionForm.h"
#include "app/connect/ShortcutField.h"
#include "app/shared/Alerts.h"
#include "app/shared/EncryptionField.h"
#include "app/shared/Frames.h"
#include "app/shared/HintLabel.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/Password.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Style.h"
#include "settings/ProcessSettings.h"
#include "settings/StoredSettings.h"
#include "sites/RecentStore.h"
#include "sites/ShortcutStore.h"
#include "sites/SiteOf.h"
#include "util/Url.h"

namespace corvane {
StartWin::StartWin(ConnectHost& app, const QRect& frame) : app_(app) {
  setWindowTitle(tr("Corvane"));
  MakeViews();
  passive_ = form_->passive->isChecked();
  setGeometry(frame);
  constexpr int kWidth = 408;
  if (StoredSettings::Frame(kMainFrame) == kMainFrame.fallback) {
    resize(std::max(kWidth, minimumSizeHint().width()), minimumSizeHint().height());
    lastHeight_ = height();
  }
}

StartWin::~StartWin() {
  qApp->disconnect(this);
  Frames::Keep(kMainFrame, *this);
}

void StartWin::Init() {
  MakeMenus();
  ReadShortcuts();
  RecentChanged();
}

void StartWin::MessageReceived(const Message& message) {
  switch (message.what) {
    case "CNNT"_what: Connect(); break;
    case "PASS"_what: passive_ = form_->passive->isChecked(); break;
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
  if (!form_->TakeAddress()) return;
  Site to = form_->Entered().site;
  to.passive = passive_;
  const std::string defaultPassword = ProcessSettings::Get().DfltPass;
  const Style& style = Style::InForce();
  if (to.user.empty()) {
    to.user = "anonymous";
    to.keptPassword = false;
    if (style.FillsEmptyFields()) form_->user->setText(QStringLiteral("anonymous"));
  }
  if (to.password.empty() && !to.keptPassword && !to.asksPassword) {
    to.password = defaultPassword;
    if (style.FillsEmptyFields())
      form_->password->SetActualText(defaultPassword, style.ExtraStars());
  }
  app_.PostMessage(OpenMessage(to));
}

void StartWin::ReadShortcuts() {
  const ShortcutStore::List list = ShortcutStore::ReadForMenu();
  shortcuts_->Fill(list.shortcuts, list.folders);
  if (list.failure.IsEmpty()) return;
  Alerts::Show(this, {.title = tr("Warning!"),
                      .text = tr("The shortcuts could not be read."),
                      .detail = Shown(list.failure)});
}

void StartWin::RecentChanged() {
  const bool firstStart = RecentStore::Read().empty() &&
                          ShortcutStore::AreTheFirst(ShortcutStore::ReadForMenu().shortcuts);
  hint_->setVisible(firstStart);
  QTimer::singleShot(0, this, &StartWin::FitHeight);
}

// What is missing for a login is typed next.
void StartWin::Fill(const Shortcut& connection) {
  form_->FillTexts(connection);
  form_->FillMode(connection);
  const Site& site = connection.site;
  const bool elsewhere = site.keptPassword || site.asksPassword;
  const bool ask = !site.user.empty() && site.password.empty() && !elsewhere;
  (ask ? form_->password : form_->host)->setFocus();
}

void StartWin::ChooseShortcut(std::int32_t index) {
  const auto shortcut = ShortcutStore::Read(index);
  form_->FillTexts(shortcut.value_or(Shortcut()));
  if (shortcut.has_value()) form_->FillMode(*shortcut);
}

// False when the text is no URL.
bool StartWin::PasteUrl(std::string_view text) {
  // What stands behind a line's end belongs to something else.
  const auto url = Url::Read(text.substr(0, text.find_first_of("\r\n")));
  if (!url.has_value()) return false;
  const Site site = SiteOf(*url);
  form_->FillTexts({.site = site});
  form_->encryption->Choose(site.security);
  if (url->port.has_value()) form_->FillPort(*url->port);
  return true;
}

void StartWin::Copy() {
  if (!field_.isNull()) field_->copy();
}

void StartWin::Paste() {
  if (field_.isNull()) return;
  const std::string clipboardText = ToBytes(QApplication::clipboard()->text());
  if (PasteUrl(clipboardText)) return;
  if (field_ == form_->password) {
    form_->password->PasteFrom(QClipboard::Clipboard);
  } else {
    field_->paste();
  }
}

void StartWin::closeEvent(QCloseEvent* event) {
  event->ignore();
  app_.ConnectionWindowClosing();
}

}  // namespace corvane
