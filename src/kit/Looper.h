#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "kit/Message.h"
#include "kit/Mutex.h"

namespace corvane {

/// A thread that handles messages one after another, in the order in which they were posted.
///
/// Owned by shared_ptr: the running thread holds one reference, so that whoever started the looper
/// may let go of it at any time; the object is destroyed when its last message has ended.
class Looper : public std::enable_shared_from_this<Looper> {
 public:
  /// How many messages the queue holds; further ones are refused.
  static constexpr std::size_t kQueueLength = 100;

  explicit Looper(std::string name);
  virtual ~Looper();
  Looper(const Looper&) = delete;
  Looper& operator=(const Looper&) = delete;

  /// Starts the thread. False when the system has no thread to give.
  bool Run();

  /// Any thread; returns at once. False when the queue is full or the looper is quitting.
  [[nodiscard]] bool PostMessage(Message message) EXCLUDES(lock_);

  /// Any thread; returns at once. What still waits in the queue is dropped, the handler that runs
  /// is interrupted through Interrupt(), and the loop ends after it.
  void Quit() EXCLUDES(lock_);

  /// Any thread; returns at once. The handler that runs ends soon; what still waits in the queue is
  /// handled. Does nothing where none runs.
  virtual void Stop() {}

  /// True from the moment Quit was called.
  [[nodiscard]] bool Quitting() const EXCLUDES(lock_);

 protected:
  /// On the looper's thread.
  virtual void MessageReceived(const Message& message) = 0;

  /// After how long without a message Idle is called; asked before each wait. 0 for never.
  [[nodiscard]] virtual std::chrono::milliseconds Patience() { return {}; }
  /// On the looper's thread.
  virtual void Idle() {}

  /// Called on the poster's thread once a message of the code `what` has been queued.
  virtual void Arrived(std::uint32_t /*what*/) {}
  /// Whether messages wait until the present one is handled.
  [[nodiscard]] bool IsWaitedFor() const EXCLUDES(lock_);

  /// Called by Quit, on the caller's thread: make a blocked MessageReceived return soon.
  virtual void Interrupt() {}

 private:
  void Loop();
  /// The next message, for which it waits no longer than `patience`; nothing where none has come,
  /// or the looper is quitting.
  [[nodiscard]] std::optional<Message> Await(std::chrono::milliseconds patience) EXCLUDES(lock_);

  const std::string name_;
  mutable Mutex lock_;
  Condition wake_;
  std::deque<Message> queue_ GUARDED_BY(lock_);
  bool quitting_ GUARDED_BY(lock_) = false;
};

}  // namespace corvane
