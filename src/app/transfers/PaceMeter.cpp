#include "app/transfers/PaceMeter.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kWindow = 3s;
constexpr auto kStep = 100ms;    // between two samples
constexpr auto kEnough = 300ms;  // before there is a figure

}  // namespace

void PaceMeter::Feed(std::int64_t moved, Time now) {
  if (moved <= 0) return;
  if (!samples_.empty() && now - samples_.back().when < kStep) return;
  samples_.push_back({now, moved});
  // The oldest one stands at the beginning of the window or before it.
  while (samples_.size() > 2 && now - samples_[1].when >= kWindow) samples_.pop_front();
}

double PaceMeter::Rate() const {
  if (samples_.size() < 2) return 0;
  const auto time = samples_.back().when - samples_.front().when;
  if (time < kEnough) return 0;
  return static_cast<double>(samples_.back().moved - samples_.front().moved) /
         std::chrono::duration<double>(time).count();
}

}  // namespace corvane
