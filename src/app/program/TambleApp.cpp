#include "app/program/TambleApp.h"

#include <QApplication>
#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <utility>

#include "app/browser/MWindow.h"
#include "app/connect/ShortCutEditWindow.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutField.h"
#include "app/connect/StartWin.h"
#include "app/desktop/Reveal.h"
#include "app/desktop/StartupNotice.h"
#include "app/program/About.h"
#include "app/program/PrefWindow.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/Icons.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Windows.h"
#include "app/transfers/DownLoadWin.h"
#include "app/transfers/TransferPane.h"
#include "settings/ProcessSettings.h"
#include "settings/StoredSettings.h"
#include "sites/ProxyOf.h"
#include "sites/ReadAtStart.h"
#include "sites/ShortcutStore.h"

namespace corvane {
namespace {

/// Without a chosen folder, downloads go where the desktop keeps them.
void ChooseDownloadFolder() {
  SettingsValues settings = ProcessSettings::Get();
  if (settings.DwnldDir != "empty") return;
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
  if (folder.isEmpty()) return;
  settings.DwnldDir = QFile::encodeName(folder).toStdString();
  ProcessSettings::Set(std::move(settings));
}

}  // namespace

TambleApp::TambleApp(WorkerFactory workers) : workers_(std::move(workers)) {}

TambleApp::~TambleApp() {
  delete preferences_;
  delete editor_;
  delete shortcuts_;
  while (!windowList_.empty()) delete windowList_.back();
  transfers_.reset();
  start_.reset();
  frames_.reset();
}

void TambleApp::ReadyToRun(const std::optional<Message>& open) {
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(ProgramIcon());
  ReadSettings();
  start_ = std::make_unique<StartWin>(*this, Frames::Restored(kMainFrame));
  transfers_ = std::make_unique<DownLoadWin>(*this, Frames::Restored(kTransferFrame));
  transfers_->show();
  start_->show();
  start_->Init();
  if (!unread_.IsEmpty()) WarnOfUnread(start_.get());
  if (open.has_value()) PostMessage(*open);
}

void TambleApp::ReadSettings() {
  unread_ = ReadAtStart();
  if (!frames_.has_value()) frames_.emplace();
  ChooseDownloadFolder();
}

void TambleApp::PostMessage(const Message& message) {
  switch (message.what) {
    case "OPNC"_what: OpenBrowser(message); break;
    case "NWST"_what:
      start_->CutMenu().Append(message.FindString("label").value_or(""),
                               message.FindInt32("index").value_or(-1));
      break;
    case "SHLG"_what: BringForward(transfers_.get()); break;
    case "SHMN"_what: Answer(message, start_.get()); break;
    default: break;
  }
}

void TambleApp::OpenBrowser(const Message& message) {
  if (!SiteIn(message).has_value()) return;
  if (!unread_.IsEmpty()) ReadSettings();
  if (unread_.IsEmpty() || withDefaults_) return Open(message);
  Alerts::Show(start_.get(),
               {.title = tr("Warning!"),
                .text = tr("Your preferences could not be read: a proxy that you have set would be "
                           "bypassed. Connect all the same?"),
                .detail = Shown(unread_),
                .buttons = {tr("Co&nnect"), tr("&Cancel")},
                .preset = 1},
               [this, message](int button) {
                 if (button != 0) return;
                 withDefaults_ = true;
                 Open(message);
               });
}

void TambleApp::Open(const Message& message) {
  Site to = SiteIn(message).value();
  to.proxy = ProxyOf(ProcessSettings::Get());
  auto* window = new MWindow(*this, Frames::ForBrowser(), std::move(to));
  windowList_.push_back(window);
  connect(window, &QObject::destroyed, this, [this, window] { std::erase(windowList_, window); });
  // Today's fonts want more room for names than the first frame gives.
  if (StoredSettings::Frame(kConnectionFrame) == kConnectionFrame.fallback) {
    window->resize(window->size().expandedTo(window->sizeHint()));
  }
  Answer(message, window);
}

void TambleApp::Answer(const Message& message, QWidget* window) {
  BringForward(window);
  StartupNotice::Complete(message.FindString("startup").value_or(""), Usable(window));
}

void TambleApp::AboutRequested() {
  if (about_ == nullptr) about_ = std::make_unique<About>();
  BringForward(about_.get());
}

// A list that could not be read would be saved as an empty one.
void TambleApp::ShowShortcuts() {
  if (shortcuts_.isNull()) {
    const ShortcutStore::List list = ShortcutStore::ReadForList();
    if (!list.failure.IsEmpty()) {
      return Alerts::Show(start_.get(), {.title = tr("Warning!"),
                                         .text = tr("The shortcuts could not be read."),
                                         .detail = Shown(list.failure)});
    }
    shortcuts_ = new ShortCutWindow(*this, list.shortcuts);
  }
  BringForward(shortcuts_);
}

void TambleApp::ShowPreferences() {
  if (!preferences_.isNull()) return BringForward(preferences_);
  if (!unread_.IsEmpty()) ReadSettings();
  preferences_ = new PrefWindow;
  BringForward(preferences_);
  if (!unread_.IsEmpty()) WarnOfUnread(preferences_);
}

void TambleApp::WarnOfUnread(QWidget* window) {
  Alerts::Show(window,
               {.title = tr("Warning!"),
                .text = tr("Your preferences could not be read. What you see are the defaults."),
                .detail = Shown(unread_)});
}

void TambleApp::ShowEditor(const Shortcut& shortcut, const QWidget& opener,
                           std::function<bool(const Shortcut&)> change) {
  const bool open = !editor_.isNull();
  if (open && editor_->Busy()) {
    BringForward(editor_);
    QApplication::beep();
    return;
  }
  if (!open) editor_ = new ShortCutEditWindow(*this);
  editor_->Edit(shortcut, std::move(change));
  if (!open) editor_->PlaceBeside(opener);
  BringForward(editor_);
}

void TambleApp::ShowEditor(const Shortcut& shortcut, const QWidget& opener) {
  ShowEditor(shortcut, opener, {});
}

void TambleApp::Transfer(transferStruct description, TransferListener listener) {
  transfers_->Add(std::move(description), std::move(listener));
}

TransferView* TambleApp::MakeTransferView(QWidget* parent) {
  auto* view = new TransferPane(parent);
  connect(view, &TransferView::Settled, this, &TambleApp::TransferEnded);
  return view;
}

void TambleApp::RevealFile(QWidget* window, const std::string& path) {
  Reveal::Show(window, path);
}

std::vector<QWidget*> TambleApp::BrowserWindows() const {
  return {windowList_.begin(), windowList_.end()};
}

int TambleApp::RunningTransfers() const {
  const auto here = std::ranges::count_if(windowList_, &MWindow::IsTransferring);
  return transfers_->RunningCount() + static_cast<int>(here);
}

QStringList TambleApp::RunningDeletions() const {
  QStringList lines;
  for (const MWindow* window : windowList_) {
    if (!window->IsTransferring()) lines.append(window->WouldEnd());
  }
  lines.removeAll(QString());
  return lines;
}

void TambleApp::QuitRequested() {
  const int running = RunningTransfers();
  const QStringList deletions = RunningDeletions();
  if (running == 0 && deletions.isEmpty() && !askingToQuit_) return AskAboutText();
  BringForward(start_.get());
  if (std::exchange(askingToQuit_, true)) return;
  Alerts::Show(start_.get(),
               {.title = tr("Alert!"),
                .text = running == 0   ? tr("Quit and stop deleting?")
                        : running == 1 ? tr("Quit and stop 1 transfer?")
                                       : tr("Quit and stop %n transfers?", "", running),
                .detail = deletions.join('\n'),
                .buttons = {tr("&Quit"), tr("&Keep running")},
                .preset = 1},
               [this](int button) {
                 askingToQuit_ = false;
                 if (button == 0) AskAboutText();
               });
}

void TambleApp::AskAboutText() {
  QWidget* typed = nullptr;
  if (!preferences_.isNull() && preferences_->Changed()) typed = preferences_;
  if (!editor_.isNull() && editor_->Busy()) typed = editor_;
  if (typed == nullptr) return AskAboutShortcuts();
  BringForward(typed);
  if (std::exchange(askingToQuit_, true)) return;
  Alerts::Show(typed,
               {.title = tr("Alert!"),
                .text = tr("What you entered here is not saved. Quit and lose it?"),
                .buttons = {tr("&Quit"), tr("&Go Back")},
                .preset = 1},
               [this, typed](int button) {
                 askingToQuit_ = false;
                 if (button != 0) return;
                 // It deletes itself; what comes next waits until it is gone.
                 connect(typed, &QObject::destroyed, this, &TambleApp::AskAboutText,
                         Qt::QueuedConnection);
                 typed->close();
               });
}

void TambleApp::AskAboutShortcuts() {
  if (shortcuts_.isNull() || !shortcuts_->Changed()) return Quit();
  BringForward(shortcuts_);
  shortcuts_->AskAboutChanges([this] { Quit(); });
}

void TambleApp::Quit() {
  if (std::exchange(quitting_, true)) return;
  for (QWidget* window : QApplication::topLevelWidgets()) window->hide();
  for (MWindow* window : windowList_) window->Disconnect();
  if (transfers_ != nullptr) transfers_->CancelAll();
  QCoreApplication::quit();
}

}  // namespace corvane
