#include "app/desktop/TrayProgram.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QPointer>
#include <QProcess>
#include <QSystemTrayIcon>
#include <cstdio>
#include <string>
#include <thread>

#include "app/desktop/RequestServer.h"
#include "app/shared/GuiThread.h"
#include "kit/Background.h"

namespace corvane {
namespace {

using Start = RunningProgram::Start;

constexpr const char* kShow = "show";

/// Whether a tray of the kind that is reached over the session bus is on its way: the toolkit
/// looks for one only once, and later would not find it.
bool IsComing() {
  const QString watcher = "org.kde.StatusNotifierWatcher";
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected() || !bus.interface()->isServiceRegistered(watcher)) return false;
  QDBusMessage call = QDBusMessage::createMethodCall(watcher, "/StatusNotifierWatcher",
                                                     "org.freedesktop.DBus.Properties", "Get");
  call << watcher << "IsStatusNotifierHostRegistered";
  const QDBusMessage reply = bus.call(call, QDBus::Block, 500);
  const QVariantList values = reply.arguments();
  return !values.isEmpty() && !qvariant_cast<QDBusVariant>(values.front()).variant().toBool();
}

/// Has the running program do what `request` says; starts it first where there is none.
Start Ask(const QString& program, const std::string& request) {
  using namespace std::chrono_literals;
  const RunningProgram running;
  Start result = running.Offer(request);
  if (result != Start::First) return result;
  if (request != kShow && !running.HasFolder()) return Start::NoAnswer;  // it could not be reached
  if (!QProcess::startDetached(program, {}, QDir::homePath())) return Start::First;
  if (request == kShow) return Start::HandedOver;
  for (int i = 0; i < 600 && result == Start::First; ++i) {
    std::this_thread::sleep_for(50ms);
    result = running.Offer(request);
  }
  return result;
}

}  // namespace

TrayProgram::TrayProgram(std::chrono::seconds patience)
    : patience_(patience), program_(QCoreApplication::applicationFilePath()) {
  looking_.setInterval(200);
  connect(&looking_, &QTimer::timeout, this, &TrayProgram::LookForTray);
}

int TrayProgram::Run() {
  if (!only_.TakeLock("tray")) {
    std::fprintf(stderr, "%s\n", qPrintable(tr("Corvane stands in the tray already.")));
    return 0;
  }
  QApplication::setQuitOnLastWindowClosed(false);
  waited_.start();
  QTimer::singleShot(0, this, &TrayProgram::LookForTray);
  looking_.start();
  return QApplication::exec();
}

void TrayProgram::LookForTray() {
  const bool late = waited_.hasExpired(patience_.count());
  if ((late || !IsComing()) && QSystemTrayIcon::isSystemTrayAvailable()) {
    looking_.stop();
    view_ = std::make_unique<ReplicantView>([this](const Message& message) { Launch(message); });
    connect(view_.get(), &ReplicantView::Removed, qApp, &QCoreApplication::quit);
    view_->Show();
  } else if (late) {
    std::fprintf(stderr, "%s\n", qPrintable(tr("This desktop has no tray for Corvane's icon.")));
    QCoreApplication::exit(1);
  }
}

void TrayProgram::Launch(const Message& message) {
  const std::string request = message.what == "OPNC"_what ? RequestServer::Line(message) : kShow;
  const bool started =
      Background::Start("launch", [view = QPointer(view_.get()), program = program_, request] {
        const Start result = Ask(program, request);
        if (result == Start::HandedOver) return;
        OnGuiThread([view, result] {
          if (view.isNull()) return;
          view->Warn(result == Start::Refused    ? tr("Corvane refuses this shortcut.")
                     : result == Start::NoAnswer ? tr("Corvane runs already but does not answer.")
                                                 : tr("Corvane could not be started."));
        });
      });
  if (!started) view_->Warn(tr("Corvane could not be started."));
}

}  // namespace corvane
