#pragma once

#include <QDBusConnection>
#include <QObject>

namespace corvane {

/// Tells when what could not be reached may be reachable again: the machine has slept, or the
/// network has come back. Listens to logind and NetworkManager on the system's bus; where one of
/// them does not run, nothing is heard of it. GUI thread.
class NetworkWatch : public QObject {
  Q_OBJECT

 public:
  explicit NetworkWatch(QDBusConnection bus = QDBusConnection::systemBus(),
                        QObject* parent = nullptr);

 Q_SIGNALS:
  void Returned();

 private Q_SLOTS:
  void PreparesForSleep(bool begins);
  void NetworkChanged(uint state);

 private:
  bool connected_ = true;
};

}  // namespace corvane
