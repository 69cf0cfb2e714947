#include "app/browser/ExtractService.h"

#include <QFile>
#include <QUuid>
#include <utility>

namespace corvane {

ExtractService::ExtractService(const QDBusConnection& bus,
                               std::function<void(const std::string&)> told)
    : bus_(bus),
      path_("/drag/" + QUuid::createUuid().toString(QUuid::Id128)),
      told_(std::move(told)),
      registered_(bus_.isConnected() &&
                  bus_.registerObject(path_, this, QDBusConnection::ExportScriptableSlots)) {}

QString ExtractService::Service() const {
  return registered_ ? bus_.baseService() : QString();
}

void ExtractService::extractSelectedFilesTo(const QString& folder) {
  if (folder.startsWith('/')) told_(QFile::encodeName(folder).toStdString());
}

}  // namespace corvane
