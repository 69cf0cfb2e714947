#include "app/desktop/Notifier.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QVariantMap>
#include <QWindow>
#include <memory>
#include <utility>

#include "app/shared/TransferNews.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

constexpr int kGatherMilliseconds = 700;

QDBusMessage Call(const char* method) {
  return QDBusMessage::createMethodCall("org.freedesktop.Notifications",
                                        "/org/freedesktop/Notifications",
                                        "org.freedesktop.Notifications", method);
}

/// The session bus, asked without waiting for an answer.
Notifier::Ways Desktop() {
  const auto shown = std::make_shared<uint>(0);  // what the desktop calls our notification
  const auto show = [shown](const QString& summary, const QString& body) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;  // a call would never be answered
    QDBusMessage call = Call("Notify");
    // Bodies are markup.
    call << QGuiApplication::applicationDisplayName() << *shown << "corvane" << summary
         << body.toHtmlEscaped() << QStringList() << QVariantMap{{"desktop-entry", "corvane"}}
         << -1;
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call), qGuiApp);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, shown] {
      const QDBusPendingReply<uint> reply = *answer;
      if (reply.isValid()) *shown = reply.value();
      answer->deleteLater();
    });
  };
  const auto take = [shown] {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const uint which = std::exchange(*shown, 0U);
    if (which != 0 && bus.isConnected()) bus.send(Call("CloseNotification") << which);
  };
  return {show, take};
}

bool Looking() {
  const QWindow* window = QGuiApplication::focusWindow();
  return window != nullptr && window->isVisible();
}

}  // namespace

Notifier::Notifier() : Notifier(Desktop()) {}

Notifier::Notifier(Ways ways) : ways_(std::move(ways)) {
  gathering_.setSingleShot(true);
  gathering_.setInterval(kGatherMilliseconds);
  connect(&gathering_, &QTimer::timeout, this, &Notifier::Show);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this] {
    if (Looking()) Forget();
  });
}

void Notifier::Ended(const TransferNews& news) {
  if (Looking() || news.cancelled || !ProcessSettings::Get().notify) return;
  ++(news.finished ? finished_ : failed_);
  if (news.finished) {
    summary_ = news.download ? tr("Download finished") : tr("Upload finished");
    body_ = news.file + '\n' + news.server;
  } else {
    summary_ = news.download ? tr("Download failed") : tr("Upload failed");
    body_ = news.failure;
  }
  if (!gathering_.isActive()) gathering_.start();
}

void Notifier::Show() {
  const int all = finished_ + failed_;
  if (all == 1) return ways_.show(summary_, body_);
  ways_.show(tr("%n transfers ended", "", all),
             failed_ == 0 ? tr("All of them finished.")
                          : tr("%1 finished, %2 failed.").arg(finished_).arg(failed_));
}

void Notifier::Forget() {
  if (finished_ + failed_ == 0) return;
  gathering_.stop();
  finished_ = failed_ = 0;
  ways_.take();
}

}  // namespace corvane
