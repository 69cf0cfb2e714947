#include "kit/Looper.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "kit/Background.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

// Counts the messages 0, 1, 2 ... that come in this order; the first is held until the gate opens.
struct CountingLooper : Looper {
  CountingLooper() : Looper("a looper with a long name") {}
  void MessageReceived(const Message& message) override {
    if (message.what == handled) ++handled;
    open.wait(false);
  }
  void Interrupt() override {
    open = true;
    open.notify_all();
  }
  bool HasHandled(std::uint32_t count) {
    return WaitFor([&] { return handled == count; });
  }

  std::atomic<bool> open = false;
  std::atomic<std::uint32_t> handled = 0;
};

TEST(Looper, HandlesInOrderRefusesWhatDoesNotFitAndIsFreedWhenItQuits) {
  for (const bool interrupted : {true, false}) {
    auto looper = std::make_shared<CountingLooper>();
    const std::weak_ptr<CountingLooper> seen = looper;
    ASSERT_TRUE(looper->PostMessage(Message(0)));  // waits until the looper runs
    ASSERT_TRUE(looper->Run());
    ASSERT_TRUE(looper->HasHandled(1));
    std::uint32_t posted = 1;
    while (looper->PostMessage(Message(posted))) ++posted;
    EXPECT_EQ(posted, 1 + Looper::kQueueLength);
    if (interrupted) {
      looper->Interrupt();
      EXPECT_TRUE(looper->HasHandled(posted));
    }
    looper->Quit();  // drops the queue, and interrupts the handler
    EXPECT_FALSE(looper->PostMessage(Message(posted)));
    ASSERT_TRUE(Background::WaitForNone(5s));
    EXPECT_EQ(looper->handled, interrupted ? posted : 1U);
    looper.reset();
    EXPECT_TRUE(seen.expired());
  }
}

TEST(Background, CountsUntilTheWorkAndAllThatItOwnsAreGone) {
  std::promise<void> gate;
  std::atomic<bool> freed = false;
  std::shared_ptr<void> owned(nullptr, [&freed](void*) {
    std::this_thread::sleep_for(20ms);
    freed = true;
  });
  ASSERT_TRUE(Background::Start("sixteen letters.",
                                [&gate, held = std::move(owned)] { gate.get_future().wait(); }));
  EXPECT_EQ(Background::Count(), 1);
  EXPECT_FALSE(Background::WaitForNone(1ms));
  gate.set_value();
  EXPECT_TRUE(Background::WaitForNone(5s));
  EXPECT_TRUE(freed);
}

}  // namespace
}  // namespace corvane
