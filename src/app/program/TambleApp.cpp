#include "app/program/TambleApp.h"

#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "app/browser/MWindow.h"
#include "app/connect/ShortCutEditWindow.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutField.h"
#include "app/connect/StartWin.h"
#include "app/desktop/Manual.h"
#include "app/desktop/StartupNotice.h"
#include "app/doctor/DoctorWindow.h"
#include "app/edited/EditedWindow.h"
#include "app/program/About.h"
#include "app/program/PrefWindow.h"
#include "app/program/TrustedCertificates.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/Icons.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Style.h"
#include "app/shared/Windows.h"
#include "app/transfers/DownLoadWin.h"
#include "queue/QueueStore.h"
#include "settings/ProcessSettings.h"
#include "settings/StoredSettings.h"
#include "sites/KnownServers.h"
#include "sites/ProxyOf.h"
#include "sites/ReadAtStart.h"
#include "sites/RecentStore.h"
#include "sites/ShortcutStore.h"
#include "sites/SiteOf.h"

namespace corvane {
namespace {

/// Seconds between signs of life; servers of today give up after a few minutes.
constexpr std::int32_t kKeepAlive = 60;

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

TambleApp::TambleApp(WorkerFactory workers, std::shared_ptr<SecretStore> secrets,
                     std::shared_ptr<KnownServers> known, std::shared_ptr<QueueStore> queue)
    : workers_(std::move(workers)),
      passwords_(std::move(secrets)),
      known_(std::move(known)),
      queue_(std::move(queue)) {}

TambleApp::~TambleApp() {
  delete preferences_;
  delete editor_;
  delete shortcuts_;
  while (!windowList_.empty()) delete windowList_.back();
  edited_.reset();
  transfers_.reset();
  start_.reset();
  frames_.reset();
}

void TambleApp::ReadyToRun(const std::optional<Message>& open) {
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(ProgramIcon());
  ReadSettings();
  start_ = std::make_unique<StartWin>(*this, Frames::Restored(kMainFrame));
  std::vector<QueueStore::Row> kept;
  if (queue_ != nullptr) kept = queue_->Load();
  transfers_ = std::make_unique<DownLoadWin>(*this, Frames::Restored(kTransferFrame), queue_);
  if (StoredSettings::Frame(kTransferFrame) == kTransferFrame.fallback) {
    transfers_->resize(transfers_->size().expandedTo(transfers_->sizeHint()));
  }
  if (Style::InForce().TransfersAtStart()) transfers_->show();
  start_->show();
  start_->Init();
  MakeEdited(kept);
  transfers_->Restore(std::move(kept));
  FollowSettings();
  qApp->installEventFilter(this);
  if (!unread_.IsEmpty()) WarnOfUnread(start_.get());
  const Text known = known_ != nullptr ? known_->Trouble() : Text();
  for (const Text& trouble : {known, edited_->Files().Trouble()}) {
    if (trouble.IsEmpty()) continue;
    Alerts::Show(start_.get(), {.title = tr("Warning!"), .text = Shown(trouble)});
  }
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
    case "SHED"_what: BringForward(edited_.get()); break;
    case "SHMN"_what: Answer(message, start_.get()); break;
    case "HELP"_what: ShowManual(start_.get()); break;
    default: break;
  }
}

void TambleApp::OpenBrowser(const Message& message) {
  if (!SiteIn(message).has_value()) return;
  if (!unread_.IsEmpty()) ReadSettings();
  if (unread_.IsEmpty() || withDefaults_) return Open(message);
  BringForward(start_.get());
  Alerts::Show(start_.get(),
               {.title = tr("Warning!"),
                .text = tr("Your preferences could not be read: a proxy that you have set would be "
                           "bypassed. Connect all the same?"),
                .detail = Shown(unread_),
                .buttons = {tr("Co&nnect"), tr("&Cancel")},
                .preset = 1,
                .heading = tr("Connect without your preferences?"),
                .advice = tr("They could not be read: a proxy that you have set would be "
                             "bypassed.")},
               [this, message](int button) {
                 if (button != 0) return;
                 withDefaults_ = true;
                 Open(message);
               });
}

void TambleApp::Open(const Message& message) {
  Site to = SiteIn(message).value();
  if (message.FindBool("saved").value_or(false)) ShortcutStore::FillPassword(to);
  Furnish(to);
  auto* window = new MWindow(*this, Frames::ForBrowser(), std::move(to));
  windowList_.push_back(window);
  connect(window, &QObject::destroyed, this, [this, window] { std::erase(windowList_, window); });
  // Today's fonts want more room for names than the first frame gives.
  if (StoredSettings::Frame(kConnectionFrame) == kConnectionFrame.fallback) {
    window->resize(window->size().expandedTo(window->sizeHint()));
  }
  Cascade(*window);
  Answer(message, window);
}

void TambleApp::Furnish(Site& site) {
  const SettingsValues settings = ProcessSettings::Get();
  site.proxy = ProxyOf(settings);
  site.warnsOfPlain = WarnsOfPlain(site, settings);
  site.keepAlive = settings.keepAlive ? kKeepAlive : 0;
}

// A window that covers another one would be taken for it.
void TambleApp::Cascade(QWidget& window) const {
  static constexpr QPoint kStep(28, 28);
  const auto covers = [this, &window] {
    return std::ranges::any_of(windowList_, [&window](const MWindow* other) {
      return other != &window && other->isVisible() &&
             (other->pos() - window.pos()).manhattanLength() < kStep.manhattanLength() / 2;
    });
  };
  for (std::size_t tries = 0; tries < windowList_.size() && covers(); ++tries) {
    window.move(Frames::OnScreen(QRect(window.pos() + kStep, window.frameSize())).topLeft());
  }
}

void TambleApp::Answer(const Message& message, QWidget* window) {
  BringForward(window);
  StartupNotice::Complete(message.FindString("startup").value_or(""), Usable(window));
}

void TambleApp::AboutRequested() {
  if (about_ == nullptr) about_ = std::make_unique<About>();
  BringForward(about_.get());
}

void TambleApp::ShowManual(QWidget* window) {
  Manual::Show(window);
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
    shortcuts_ = new ShortCutWindow(*this, list.shortcuts, list.folders);
  }
  BringForward(shortcuts_);
}

void TambleApp::ShowPreferences() {
  if (!preferences_.isNull()) return BringForward(preferences_);
  if (!unread_.IsEmpty()) ReadSettings();
  TrustedCertificates trusted;
  if (known_) {
    trusted.list = [this] { return known_->List(); };
    trusted.remove = [this](const std::string& host, std::uint16_t port) {
      known_->Remove(host, port);
    };
  }
  preferences_ = new PrefWindow(std::move(trusted));
  connect(preferences_, &PrefWindow::Saved, this, &TambleApp::FollowSettings);
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

void TambleApp::FindPassword(QWidget* window, const Site& site,
                             std::function<void(std::optional<Site>, bool)> found) {
  passwords_.Find(window, site, std::move(found));
}

void TambleApp::Diagnose(QWidget* window, const Site& site,
                         std::function<void(const Site&)> connect) {
  if (auto* open = window->findChild<DoctorWindow*>()) return BringForward(open);
  const auto edit = [this, over = QPointer(window)](const Site& changed) {
    if (!over.isNull()) ShowEditor({.label = changed.host, .site = changed}, *over);
  };
  passwords_.Find(window, site,
                  [this, over = QPointer(window), edit, connect = std::move(connect)](
                      const std::optional<Site>& whole, bool /*keep*/) {
                    if (over.isNull() || !whole.has_value()) return;
                    BringForward(new DoctorWindow(over, *whole, {workers_.doctor, connect, edit}));
                  });
}

void TambleApp::KeepPasswords(std::vector<EditedShortcut> shortcuts,
                              std::function<void(std::vector<Shortcut>, const Text&)> then) {
  passwords_.KeepAll(std::move(shortcuts), std::move(then));
}

void TambleApp::FindPasswords(std::vector<Shortcut> shortcuts,
                              std::function<void(std::vector<Shortcut>, int)> then) {
  passwords_.FindAll(std::move(shortcuts), std::move(then));
}

void TambleApp::ForgetPasswords(const std::vector<Shortcut>& before,
                                const std::vector<Shortcut>& now) {
  passwords_.ForgetUnused(before, now);
}

void TambleApp::AskWhetherKept(std::function<void(bool)> then) {
  passwords_.AskWhetherKept(std::move(then));
}

// A recent connection that cannot be kept is no reason to disturb.
void TambleApp::ConnectionStands(const Site& site, bool keep,
                                 std::function<void(const Text&)> tell) {
  if (keep) {
    passwords_.Keep(site, tell);
  } else {
    passwords_.MoveOver(site, tell);
  }
  passwords_.MoveProxyOver(site);
  RecentStore::Add(site, QDateTime::currentSecsSinceEpoch());
  start_->RecentChanged();
}

std::vector<QWidget*> TambleApp::BrowserWindows() const {
  return {windowList_.begin(), windowList_.end()};
}

QStringList TambleApp::WouldBeLost() const {
  QStringList lines;
  const int going = transfers_->GoingCount();
  const auto here = static_cast<int>(std::ranges::count_if(windowList_, &MWindow::IsTransferring));
  const int lost = here + (transfers_->KeepsRows() ? 0 : going);
  if (lost == 1) lines += tr("1 transfer is running.");
  if (lost > 1) lines += tr("%n transfers are running.", "", lost);
  if (transfers_->KeepsRows() && going > 0) {
    lines += going == 1 ? tr("1 transfer is paused, and can be resumed after the next start.")
                        : tr("%n transfers are paused, and can be resumed after the next start.",
                             "", going);
  }
  for (const MWindow* window : windowList_) {
    if (!window->IsTransferring()) lines += window->WouldEnd();
  }
  lines.removeAll(QString());
  lines += edited_->Files().Unsent();
  if (!editor_.isNull() && editor_->Busy()) lines += tr("A shortcut is being edited.");
  if (!preferences_.isNull() && preferences_->Changed())
    lines += tr("The preferences are changed and not saved.");
  if (!shortcuts_.isNull() && shortcuts_->Changed())
    lines += tr("The list of shortcuts is changed and not saved.");
  return lines;
}

void TambleApp::QuitRequested() {
  const QStringList lines = WouldBeLost();
  if (lines.isEmpty() && !askingToQuit_) return Quit();
  BringForward(start_.get());
  if (std::exchange(askingToQuit_, true)) return;
  QStringList buttons{tr("&Quit"), tr("&Keep Running")};
  const bool changed = !shortcuts_.isNull() && shortcuts_->Changed();
  if (changed) buttons.insert(1, tr("&Save Shortcuts and Quit"));
  const int keep = static_cast<int>(buttons.size()) - 1;
  Alerts::Show(start_.get(),
               {.icon = QMessageBox::Question,
                .title = tr("Quit"),
                .text = tr("Quit Corvane?"),
                .detail = lines.join('\n'),
                .buttons = buttons,
                .preset = keep},
               [this, keep](int button) {
                 askingToQuit_ = false;
                 if (button == keep) return;
                 if (button == 0 || shortcuts_.isNull()) return Quit();
                 shortcuts_->Save([this] { Quit(); });
               });
}

bool TambleApp::AnyWindowOpen(const QWidget* except) {
  return std::ranges::any_of(QApplication::topLevelWidgets(), [except](const QWidget* window) {
    const Qt::WindowType type = window->windowType();
    return window != except && window->isVisible() && (type == Qt::Window || type == Qt::Dialog);
  });
}

void TambleApp::ConnectionWindowClosing() {
  if (Style::InForce().ClosingQuits() || !AnyWindowOpen(start_.get())) return QuitRequested();
  start_->hide();
}

bool TambleApp::eventFilter(QObject* target, QEvent* event) {
  const bool mayBeLast = event->type() == QEvent::Hide && target->isWidgetType() &&
                         static_cast<QWidget*>(target)->isWindow() && start_ != nullptr &&
                         !start_->isVisible();
  if (mayBeLast) QTimer::singleShot(0, this, &TambleApp::QuitWithoutWindows);
  return false;
}

// A program without any window would be out of reach.
void TambleApp::QuitWithoutWindows() {
  if (!quitting_ && !AnyWindowOpen()) QuitRequested();
}

void TambleApp::Quit() {
  if (std::exchange(quitting_, true)) return;
  for (QWidget* window : QApplication::topLevelWidgets()) window->hide();
  for (MWindow* window : windowList_) window->Disconnect();
  if (transfers_ != nullptr) transfers_->StopAll();
  QCoreApplication::quit();
}

}  // namespace corvane
