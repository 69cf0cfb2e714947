#include "app/desktop/Reveal.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QPointer>
#include <QWidget>
#include <utility>

#include "app/shared/Alerts.h"
#include "app/shared/ScreenText.h"
#include "util/LocalUrl.h"

namespace corvane {
namespace {

constexpr int kAnswerMilliseconds = 3000;

/// The address of a path whose bytes need not be text.
QUrl FileUrl(const std::string& path) {
  const QByteArray bytes = QByteArray::fromStdString(path);
  return QUrl::fromEncoded("file://" + bytes.toPercentEncoding("/"));
}

void AskFileManager(const QUrl& entry, std::function<void(bool)> then) {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return then(false);  // a call would never be answered
  QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                     "/org/freedesktop/FileManager1",
                                                     "org.freedesktop.FileManager1", "ShowItems");
  call << QStringList{entry.toString(QUrl::FullyEncoded)} << QString();
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, kAnswerMilliseconds), qApp);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                   [watcher, then = std::move(then)] {
                     watcher->deleteLater();
                     then(!watcher->isError());
                   });
}

Reveal::Ways& TheWays() {
  static Reveal::Ways ways = Reveal::Desktop();
  return ways;
}

}  // namespace

void Reveal::Show(QWidget* window, const std::string& path) {
  TheWays().showEntry(FileUrl(path), [window = QPointer(window), path](bool shown) {
    if (shown || TheWays().open(FileUrl(FolderOf(path))) || window.isNull()) return;
    Alerts::Show(window,
                 {.icon = QMessageBox::Information,
                  .title = QCoreApplication::translate("Reveal", "Reveal in Tracker"),
                  .text = QCoreApplication::translate(
                      "Reveal", "No file manager could be asked. This is where to look:"),
                  .detail = ToText(path),
                  .subject = QCoreApplication::translate("Reveal", "Show in Folder"),
                  .heading = QCoreApplication::translate("Reveal", "No file manager answered."),
                  .advice = QCoreApplication::translate("Reveal", "This is where to look:")});
  });
}

void Reveal::Open(QWidget* window, const std::string& path) {
  if (TheWays().open(FileUrl(path))) return;
  Alerts::Show(window,
               {.icon = QMessageBox::Information,
                .title = QCoreApplication::translate("Reveal", "Open"),
                .text = QCoreApplication::translate("Reveal", "No program opens this file:"),
                .detail = ToText(path),
                .heading = QCoreApplication::translate("Reveal", "No program opens this file."),
                .advice = QCoreApplication::translate("Reveal", "This is where it is:")});
}

void Reveal::Use(Ways ways) {
  TheWays() = std::move(ways);
}

Reveal::Ways Reveal::Desktop() {
  return {AskFileManager, QDesktopServices::openUrl};
}

}  // namespace corvane
