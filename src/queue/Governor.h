#pragma once

#include <chrono>
#include <cstdint>

namespace corvane {

/// How many connections one transfer should use. With plenty of work all that are allowed, and
/// fewer where those turn out to move as much; otherwise some at once, and more while throughput
/// grows by it. A value; one thread.
class Governor {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// `most`: never more than that, at least 1.
  explicit Governor(int most) : most_(most < 1 ? 1 : most) {}

  /// What is known at a moment; the counts grow from the transfer's beginning.
  struct Sample {
    Time now{};
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    int connected = 0;    ///< connections that work now
    int ready = 0;        ///< jobs that wait for a connection
    bool plenty = false;  ///< more of them than connections will make a difference to
  };
  /// How many connections there should be from now on. Asked a few times a second.
  [[nodiscard]] int Wanted(const Sample& sample);
  /// The server takes no more than so many.
  void Lower(int most);

 private:
  /// How many there are at least, where there is work for them.
  [[nodiscard]] int AtOnce() const;
  void Begin(const Sample& sample, int useful);
  void Measure(const Sample& sample);
  void Judge(double throughput, const Sample& sample);
  void JudgeAdded(double throughput, const Sample& sample);
  void JudgeDropped(double throughput, const Sample& sample);
  void Add(int step, int useful);
  void Drop();

  int most_;
  int wanted_ = 1;
  bool begun_ = false;      // with plenty of work
  int step_ = 0;            // the last change, until it is judged
  int fall_ = 0;            // how many are tried to be done without next
  double before_ = 0;       // throughput before it, a second
  bool measuring_ = false;  // all that are wanted have been connected since `since_`
  Time since_{};
  std::int64_t bytes_ = 0;  // counts at `since_`
  std::int64_t files_ = 0;
  Time quiet_{};  // no change before
};

}  // namespace corvane
