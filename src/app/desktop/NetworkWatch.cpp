#include "app/desktop/NetworkWatch.h"

#include <utility>

namespace corvane {
namespace {

/// NetworkManager's state from which on there is a network, if only a local one.
constexpr uint kConnectedLocal = 50;

}  // namespace

NetworkWatch::NetworkWatch(QDBusConnection bus, QObject* parent) : QObject(parent) {
  if (!bus.isConnected()) return;
  bus.connect("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
              "PrepareForSleep", this, SLOT(PreparesForSleep(bool)));
  bus.connect("org.freedesktop.NetworkManager", "/org/freedesktop/NetworkManager",
              "org.freedesktop.NetworkManager", "StateChanged", this, SLOT(NetworkChanged(uint)));
}

void NetworkWatch::PreparesForSleep(bool begins) {
  if (!begins) Q_EMIT Returned();
}

void NetworkWatch::NetworkChanged(uint state) {
  const bool before = std::exchange(connected_, state >= kConnectedLocal);
  if (connected_ && !before) Q_EMIT Returned();
}

}  // namespace corvane
