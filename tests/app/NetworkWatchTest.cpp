#include "app/desktop/NetworkWatch.h"

#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QProcess>
#include <QTest>

namespace corvane {
namespace {

TEST(NetworkWatch, TellsWhenTheMachineWakesOrTheNetworkReturns) {
  QProcess daemon;
  daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
  ASSERT_TRUE(daemon.waitForReadyRead(5000));
  const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
  QDBusConnection system = QDBusConnection::connectToBus(address, "system");
  int returned = 0;
  {
    const NetworkWatch watch(QDBusConnection::connectToBus(address, "watch"));
    QObject::connect(&watch, &NetworkWatch::Returned, [&returned] { ++returned; });
    const auto say = [&system](const char* service, const char* path, const char* interface,
                               const char* name, const QVariant& value) {
      EXPECT_TRUE(system.registerService(service));
      system.send(QDBusMessage::createSignal(path, interface, name) << value);
    };
    const auto sleeps = [&say](bool begins) {
      say("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
          "PrepareForSleep", begins);
    };
    const auto connects = [&say](uint state) {
      say("org.freedesktop.NetworkManager", "/org/freedesktop/NetworkManager",
          "org.freedesktop.NetworkManager", "StateChanged", state);
    };
    sleeps(true);
    sleeps(false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return returned == 1; }));
    for (const uint state : {20U, 40U, 60U, 70U}) connects(state);
    sleeps(false);  // comes last
    EXPECT_TRUE(QTest::qWaitFor([&] { return returned == 3; }));
    QTest::qWait(50);
    EXPECT_EQ(returned, 3) << "a better network is not a new one";
  }
  QDBusConnection::disconnectFromBus("watch");
  QDBusConnection::disconnectFromBus("system");
  const NetworkWatch without(QDBusConnection("nowhere"));
  daemon.terminate();
  EXPECT_TRUE(daemon.waitForFinished(5000));
}

}  // namespace
}  // namespace corvane
