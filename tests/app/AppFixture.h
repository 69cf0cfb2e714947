#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/Alerts.h"
#include "app/TambleApp.h"
#include "kit/Looper.h"
#include "kit/Mutex.h"
#include "workers/MThread.h"

namespace corvane {

/// Keeps what a browser window asks its connection for.
class RecordingLooper : public Looper {
 public:
  RecordingLooper() : Looper("recording") {}
  [[nodiscard]] std::vector<Message> Received() {
    MutexLock hold(lock_);
    return received_;
  }
  /// Whether a request with this code, and this text under `name`, has arrived.
  [[nodiscard]] bool Has(std::uint32_t what, const std::string& name, const std::string& text) {
    const std::vector<Message> all = Received();
    return std::ranges::any_of(all, [&](const Message& message) {
      return message.what == what && message.FindString(name) == text;
    });
  }

 protected:
  void MessageReceived(const Message& message) override {
    MutexLock hold(lock_);
    received_.push_back(message);
  }

 private:
  Mutex lock_;
  std::vector<Message> received_ GUARDED_BY(lock_);
};

/// A transfer that moves nothing.
class IdleWorker : public MThread {
 protected:
  std::int32_t Execute() override { return 0; }
};

struct StartedTransfer {
  Connection connection;
  std::shared_ptr<TransferUi> row;
  transferStruct description;
  std::shared_ptr<MThread> worker;
};

/// The application with its windows, and without servers: connections and transfers are recorded.
class AppFixture : public testing::Test {
 public:
  ~AppFixture() override;

 protected:
  AppFixture();

  /// Opens a browser window on a host that answers nothing.
  MWindow& OpenBrowser();
  /// Fills the window's listing as its connection would.
  void List(const std::vector<fileStruct>& entries);
  static bool Wait(const std::function<bool()>& until) { return QTest::qWaitFor(until, 5000); }
  /// Presses this button on every later alert.
  void Press(int button);

  static fileStruct File(const std::string& name, std::int64_t size = 1, int day = 1);
  static fileStruct Directory(const std::string& name);
  /// "." and "..", as every listing begins.
  static std::vector<fileStruct> WithDots(std::vector<fileStruct> entries);

  QTemporaryDir folder_;
  std::shared_ptr<RecordingLooper> looper_;
  std::shared_ptr<BrowserUi> link_;
  std::vector<StartedTransfer> transfers_;
  std::vector<Alerts::Question> alerts_;
  std::unique_ptr<TambleApp> app_;

 private:
  int listings_ = 0;
};

}  // namespace corvane
