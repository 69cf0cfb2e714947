#include "queue/Governor.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr std::chrono::milliseconds kLong(250);  // enough to measure throughput
constexpr std::chrono::seconds kQuiet(5);
constexpr double kWorthIt = 1.08;
constexpr std::int64_t kFileCost = std::int64_t{64} * 1024;  // bytes that a file is like

}  // namespace

int Governor::AtOnce() const {
  return std::min(most_, std::max(2, most_ / 2));
}

int Governor::Wanted(const Sample& sample) {
  const int useful = std::clamp(sample.ready + sample.connected, 1, most_);
  Begin(sample, useful);
  Measure(sample);
  return std::min(wanted_, useful);
}

// Many short transfers are over before it is known how many connections they are worth.
void Governor::Begin(const Sample& sample, int useful) {
  const bool all = sample.plenty && !begun_;
  const int least = all ? most_ : std::min(AtOnce(), useful);
  if (all) {
    begun_ = true;
    fall_ = most_ - AtOnce();
    quiet_ = sample.now + kQuiet;
  }
  if (wanted_ >= least) return;
  wanted_ = least;
  step_ = 0;
  measuring_ = false;
}

void Governor::Measure(const Sample& sample) {
  const bool leaving = step_ < 0 && sample.connected > wanted_;
  if (sample.connected < wanted_ || leaving) {
    measuring_ = false;
    return;
  }
  if (!measuring_) {
    measuring_ = true;
    since_ = sample.now;
    bytes_ = sample.bytes;
    files_ = sample.files;
    return;
  }
  const auto passed = sample.now - since_;
  const std::int64_t moved = sample.bytes - bytes_ + (sample.files - files_) * kFileCost;
  if (passed < kLong || moved <= 0) return;
  Judge(static_cast<double>(moved) / std::chrono::duration<double>(passed).count(), sample);
}

void Governor::Judge(double throughput, const Sample& sample) {
  measuring_ = false;
  if (step_ > 0) return JudgeAdded(throughput, sample);
  if (step_ < 0) return JudgeDropped(throughput, sample);
  before_ = throughput;
  if (sample.now < quiet_) return;
  if (fall_ > 0) return Drop();
  Add(std::max(1, wanted_ / 2), std::min(most_, sample.ready + sample.connected));
}

void Governor::JudgeAdded(double throughput, const Sample& sample) {
  if (throughput >= before_ * kWorthIt) {
    before_ = throughput;
    Add(step_ * 2, std::min(most_, sample.ready + sample.connected));
    return;
  }
  wanted_ -= step_;
  step_ = 0;
  quiet_ = sample.now + kQuiet;
}

// Those that were dropped come back where they were worth it; then fewer are dropped next time.
void Governor::JudgeDropped(double throughput, const Sample& sample) {
  const bool worthIt = before_ >= throughput * kWorthIt;
  if (worthIt) wanted_ -= step_;
  step_ = 0;
  fall_ = std::min(fall_ / 2, wanted_ - AtOnce());
  quiet_ = sample.now + kQuiet;
}

void Governor::Drop() {
  step_ = -fall_;
  wanted_ += step_;
}

void Governor::Add(int step, int useful) {
  step_ = std::clamp(useful - wanted_, 0, step);
  wanted_ += step_;
}

void Governor::Lower(int most) {
  most_ = std::clamp(most, 1, most_);
  wanted_ = std::min(wanted_, most_);
  step_ = 0;
  fall_ = 0;
  measuring_ = false;
}

}  // namespace corvane
