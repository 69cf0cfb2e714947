#include "app/desktop/LibSecretStore.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusObjectPath>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <memory>

#include "support/Files.h"

namespace corvane {
namespace {

using Result = SecretStore::Result;
using Prompt = SecretStore::Prompt;
using namespace std::chrono_literals;

constexpr const char* kName = "org.freedesktop.secrets";

/// A session bus that starts nothing by itself, and a real keyring on it.
class Keyring : public testing::Test {
 protected:
  Keyring() {
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_DATA_HOME"}) {
      environment_.insert(name, home_.path());
    }
    environment_.remove("DISPLAY");
    // In place of the one of the system, which would start the keyring.
    Write(home_.filePath("dbus-1/services/org.freedesktop.secrets.service").toStdString(),
          "[D-BUS Service]\nName=org.freedesktop.secrets\nExec=/bin/false\n");
    bus_.setProcessEnvironment(environment_);
    bus_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    EXPECT_TRUE(bus_.waitForReadyRead(5000));
    const QByteArray address = bus_.readLine().trimmed();
    environment_.insert("DBUS_SESSION_BUS_ADDRESS", address);
    own_ = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    QDBusConnection::connectToBus(address, "keyring");
  }
  ~Keyring() override {
    Stop();
    QDBusConnection::disconnectFromBus("keyring");
    qputenv("DBUS_SESSION_BUS_ADDRESS", own_);
    bus_.terminate();
    bus_.waitForFinished(5000);
  }

  void Start() {
    service_ = std::make_unique<QProcess>();
    service_->setProcessEnvironment(environment_);
    service_->start("gnome-keyring-daemon", {"--foreground", "--unlock", "--components=secrets"});
    service_->write("master");
    service_->closeWriteChannel();
    EXPECT_TRUE(QTest::qWaitFor([] { return Runs(); }, 5000));
  }
  void Stop() {
    if (service_ == nullptr) return;
    service_->kill();
    service_->waitForFinished(5000);
    service_.reset();
    EXPECT_TRUE(QTest::qWaitFor([] { return !Runs(); }, 5000));
  }
  static bool Runs() { return QDBusConnection("keyring").interface()->isServiceRegistered(kName); }
  static void Lock() {
    QDBusInterface service(kName, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service",
                           QDBusConnection("keyring"));
    const QList paths{QDBusObjectPath("/org/freedesktop/secrets/collection/login")};
    EXPECT_EQ(service.call("Lock", QVariant::fromValue(paths)).type(), QDBusMessage::ReplyMessage);
  }
  Result Find(const SecretKey& key, Prompt prompt = Prompt::Never) {
    found_.clear();
    return store_.Lookup(key, prompt, found_);
  }

  QTemporaryDir home_;
  QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
  QByteArray own_;
  QProcess bus_;
  std::unique_ptr<QProcess> service_;
  LibSecretStore store_{{.usual = 3s, .prompted = 3s}};
  std::string found_;
};

const SecretKey kAnna{.host = "www.example.net", .port = 21, .user = "anna"};

TEST_F(Keyring, KeepsFindsAndForgetsThroughEverythingThatHappensToIt) {
  EXPECT_EQ(Find(kAnna), Result::NoService);
  EXPECT_EQ(store_.Save(kAnna, "pw", Prompt::Allowed), Result::NoService);
  Start();
  EXPECT_EQ(Find(kAnna), Result::Missing);
  const SecretKey odd{.host = "h%\xC3\xBC", .port = 2121, .user = "a\xFF b@c"};
  const std::string bytes("\xFF\0:@\n", 5);
  EXPECT_EQ(store_.Save(kAnna, "old", Prompt::Never), Result::Done);
  EXPECT_EQ(store_.Save(kAnna, "new", Prompt::Never), Result::Done);
  EXPECT_EQ(store_.Save(odd, bytes, Prompt::Never), Result::Done);
  EXPECT_TRUE(Find(kAnna) == Result::Done && found_ == "new");
  EXPECT_TRUE(Find(odd) == Result::Done && found_ == bytes);
  for (const SecretKey& other : {SecretKey{"www.example.net", 990, "anna"},
                                 SecretKey{"www.example.net", 21, "an"}, SecretKey{}}) {
    EXPECT_EQ(Find(other), Result::Missing);
  }

  Lock();
  EXPECT_EQ(Find(kAnna), Result::Locked);
  EXPECT_EQ(store_.Save(kAnna, "later", Prompt::Never), Result::Locked);
  EXPECT_EQ(store_.Remove(kAnna, Prompt::Never), Result::Locked);
  // There is nobody to show the prompt.
  EXPECT_NE(Find(kAnna, Prompt::Allowed), Result::Done);

  Stop();
  EXPECT_EQ(Find(kAnna), Result::NoService);
  Start();
  EXPECT_TRUE(Find(kAnna) == Result::Done && found_ == "new") << "nothing was lost meanwhile";
  EXPECT_EQ(store_.Save(odd, "again", Prompt::Never), Result::Done);

  const auto began = std::chrono::steady_clock::now();
  ::kill(static_cast<pid_t>(service_->processId()), SIGSTOP);
  EXPECT_EQ(LibSecretStore({.usual = 300ms, .prompted = 300ms}).Save(odd, "x", Prompt::Never),
            Result::Failed);
  EXPECT_LT(std::chrono::steady_clock::now() - began, 2s) << "it does not wait for ever";
  ::kill(static_cast<pid_t>(service_->processId()), SIGCONT);

  EXPECT_EQ(store_.Remove(kAnna, Prompt::Never), Result::Done);
  EXPECT_EQ(store_.Remove(kAnna, Prompt::Never), Result::Missing);
  EXPECT_EQ(Find(kAnna), Result::Missing);
}

}  // namespace
}  // namespace corvane
