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
  if (const int least = std::min(AtOnce(), useful); wanted_ < least) {
    wanted_ = least;
    step_ = 0;
    measuring_ = false;
  }
  Measure(sample);
  return std::min(wanted_, useful);
}

void Governor::Measure(const Sample& sample) {
  if (sample.connected < wanted_) {
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
  const int useful = std::min(most_, sample.ready + sample.connected);
  if (step_ == 0) {
    before_ = throughput;
    if (sample.now >= quiet_) Add(std::max(1, wanted_ / 2), useful);
    return;
  }
  if (throughput >= before_ * kWorthIt) {
    before_ = throughput;
    Add(step_ * 2, useful);
    return;
  }
  wanted_ -= step_;
  step_ = 0;
  quiet_ = sample.now + kQuiet;
}

void Governor::Add(int step, int useful) {
  step_ = std::clamp(useful - wanted_, 0, step);
  wanted_ += step_;
}

void Governor::Lower(int most) {
  most_ = std::clamp(most, 1, most_);
  wanted_ = std::min(wanted_, most_);
  step_ = 0;
  measuring_ = false;
}

}  // namespace corvane
