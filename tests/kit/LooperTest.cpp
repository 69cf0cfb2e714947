#include "kit/Looper.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <vector>

#include "kit/Background.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using std::chrono::seconds;

// Notes what it handles; its first message is held until the gate opens.
class NotingLooper : public Looper {
 public:
  NotingLooper() : Looper("a looper with a long name") {}
  void OpenGate() {
    const MutexLock lock(lock_);
    gateOpen_ = true;
    gate_.NotifyAll();
  }
  std::vector<std::uint32_t> Handled() {
    const MutexLock lock(lock_);
    return handled_;
  }

 protected:
  void MessageReceived(const Message& message) override {
    const MutexLock lock(lock_);
    handled_.push_back(message.what);
    while (!gateOpen_) gate_.Wait(lock_);
  }
  void Interrupt() override { OpenGate(); }

 private:
  Mutex lock_;
  Condition gate_;
  bool gateOpen_ GUARDED_BY(lock_) = false;
  std::vector<std::uint32_t> handled_ GUARDED_BY(lock_);
};

TEST(Looper, HandlesInOrderAndRefusesWhatDoesNotFit) {
  const auto looper = std::make_shared<NotingLooper>();
  ASSERT_TRUE(looper->PostMessage(Message(0)));  // waits until the looper runs
  ASSERT_TRUE(looper->Run());
  ASSERT_TRUE(WaitFor([&] { return looper->Handled().size() == 1; }));
  std::vector<std::uint32_t> posted{0};
  for (std::uint32_t i = 1; looper->PostMessage(Message(i)); ++i) posted.push_back(i);
  EXPECT_EQ(posted.size(), 1 + Looper::kQueueLength);
  looper->OpenGate();
  EXPECT_TRUE(WaitFor([&] { return looper->Handled().size() == posted.size(); }));
  EXPECT_EQ(looper->Handled(), posted);
  looper->Quit();
  EXPECT_FALSE(looper->PostMessage(Message(1)));
  EXPECT_TRUE(Background::WaitForNone(seconds(5)));
}

TEST(Looper, QuitDropsTheQueueInterruptsTheHandlerAndFreesTheLooper) {
  auto looper = std::make_shared<NotingLooper>();
  const std::weak_ptr<NotingLooper> seen = looper;
  ASSERT_TRUE(looper->Run());
  ASSERT_TRUE(looper->PostMessage(Message(1)));
  ASSERT_TRUE(WaitFor([&] { return looper->Handled().size() == 1; }));
  ASSERT_TRUE(looper->PostMessage(Message(2)));
  looper->Quit();
  EXPECT_TRUE(looper->Quitting());
  ASSERT_TRUE(Background::WaitForNone(seconds(5)));
  EXPECT_EQ(looper->Handled(), std::vector<std::uint32_t>{1});
  looper.reset();
  EXPECT_TRUE(seen.expired());
}

TEST(Background, CountsUntilTheWorkAndAllThatItOwnsAreGone) {
  std::promise<void> gate;
  std::atomic<bool> freed = false;
  std::shared_ptr<int> owned(new int, [&freed](const int* number) {
    delete number;
    freed = true;
  });
  ASSERT_TRUE(
      Background::Start("sixteen letters.", [&gate, held = owned] { gate.get_future().wait(); }));
  owned.reset();
  EXPECT_EQ(Background::Count(), 1);
  EXPECT_FALSE(Background::WaitForNone(std::chrono::milliseconds(1)));
  EXPECT_FALSE(freed);
  gate.set_value();
  EXPECT_TRUE(Background::WaitForNone(seconds(5)));
  EXPECT_TRUE(freed);
}

}  // namespace
}  // namespace corvane
