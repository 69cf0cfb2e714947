#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace corvane {

/// Base of the workers: one piece of work on a thread of its own.
///
/// Owned by shared_ptr. The running thread holds one reference, so that a creator may let go of the
/// worker or keep it for Cancel; it is destroyed when the work has ended and nobody holds it.
class MThread : public std::enable_shared_from_this<MThread> {
 public:
  explicit MThread(std::string name = "mthread");
  virtual ~MThread() = default;
  MThread(const MThread&) = delete;
  MThread& operator=(const MThread&) = delete;

  /// Starts the work. False when the system has no thread to give.
  bool Run();

  /// Any thread: asks the work to end soon. Returns at once.
  virtual void Cancel();
  /// Any thread: the network may be another one by now. A connection that says nothing from here on
  /// is soon taken for lost. Returns at once.
  virtual void CheckConnections() {}
  /// Any thread: whether Cancel was called.
  [[nodiscard]] bool Cancelled() const { return cancelled_.load(); }
  /// What Cancelled() returns, for those who look often; lives as long as the object.
  [[nodiscard]] const std::atomic<bool>& CancelFlag() const { return cancelled_; }

 protected:
  /// The work, on its own thread.
  virtual std::int32_t Execute() = 0;

 private:
  const std::string name_;
  std::atomic<bool> cancelled_{false};
};

}  // namespace corvane
