#include "app/TambleApp.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QScreen>
#include <QStandardPaths>
#include <utility>

#include "app/DownLoadWin.h"
#include "app/Icons.h"
#include "app/MWindow.h"
#include "app/StartWin.h"
#include "app/Windows.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

constexpr Rect kStartFrame{100, 50, 420, 270};
constexpr Rect kTransferFrame{400, 200, 750, 500};
constexpr Rect kBrowserFrame{120, 50, 560, 530};
constexpr float kNarrowest = 420;

QRect ToQt(const Rect& frame) {
  return QRect(QPoint(static_cast<int>(frame.left), static_cast<int>(frame.top)),
               QPoint(static_cast<int>(frame.right), static_cast<int>(frame.bottom)));
}

Rect MainScreen() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  if (screen == nullptr) return {0, 0, 1024, 768};
  const QRect area = screen->availableGeometry();
  return {static_cast<float>(area.left()), static_cast<float>(area.top()),
          static_cast<float>(area.right()), static_cast<float>(area.bottom())};
}

/// Without a chosen folder, downloads go where the desktop keeps them.
void ChooseDownloadFolder() {
  SettingsValues settings = ProcessSettings::Get();
  if (settings.DwnldDir != "empty") return;
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
  if (folder.isEmpty() || !QDir(folder).exists()) return;
  settings.DwnldDir = QFile::encodeName(folder).toStdString();
  ProcessSettings::Set(std::move(settings));
}

}  // namespace

TambleApp::TambleApp(WorkerFactory workers) : workers_(std::move(workers)) {}

TambleApp::~TambleApp() {
  while (!windowList_.empty()) delete windowList_.back();
}

void TambleApp::ReadyToRun(const std::optional<Message>& open) {
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(ProgramIcon());
  ChooseDownloadFolder();
  start_ = std::make_unique<StartWin>(*this, ToQt(kStartFrame));
  transfers_ = std::make_unique<DownLoadWin>(*this, ToQt(kTransferFrame));
  transfers_->show();
  start_->show();
  if (open.has_value()) PostMessage(*open);
}

void TambleApp::PostMessage(const Message& message) {
  switch (message.what) {
    case "OPNC"_what: OpenBrowser(message); break;
    case "SHLG"_what: BringForward(transfers_.get()); break;
    case "SHMN"_what: BringForward(start_.get()); break;
    default: break;
  }
}

Rect TambleApp::FitFrame(Rect frame, const Rect& screen) {
  constexpr float kGap = 3;
  if (screen.left > frame.left) frame.left = screen.left + kGap;
  if (screen.top > frame.top) frame.top = screen.top + kGap;
  if (screen.right < frame.right) frame.right = screen.right - kGap;
  if (screen.bottom < frame.bottom) frame.bottom = screen.bottom - kGap;
  if (frame.right - frame.left < kNarrowest) {
    frame.left = 15;
    frame.right = 435;
  }
  return frame;
}

void TambleApp::OpenBrowser(const Message& message) {
  Connection to;
  to.host = message.FindString("host").value_or("");
  if (to.host.empty()) return;
  to.user = message.FindString("user").value_or("anonymous");
  to.pass = message.FindString("pass").value_or("guest@a.b");
  to.path = message.FindString("path").value_or("");
  to.port = static_cast<std::uint16_t>(message.FindInt16("port").value_or(21));
  to.passive = message.FindBool("passive").value_or(false);
  auto* window = new MWindow(*this, ToQt(FitFrame(kBrowserFrame, MainScreen())), std::move(to));
  // Today's fonts want more room for names than the frame gives.
  window->resize(window->size().expandedTo(window->sizeHint()));
  BringForward(window);
}

void TambleApp::Quit() {
  if (std::exchange(quitting_, true)) return;
  for (QWidget* window : QApplication::topLevelWidgets()) window->hide();
  for (MWindow* window : windowList_) window->Disconnect();
  if (transfers_ != nullptr) transfers_->CancelAll();
  QCoreApplication::quit();
}

}  // namespace corvane
