#include "workers/Doctor.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>

#include "workers/AdviceFor.h"

namespace corvane {
namespace {

using Kind = DiagnosisStep::Kind;
using Sign = DiagnosisStep::Sign;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Interrupts an examination where a step takes too long.
class StepWatch {
 public:
  StepWatch(Examination& examination, milliseconds limit)
      : thread_([&examination, limit](const std::stop_token& over) {
          std::mutex lock;
          std::condition_variable_any wake;
          std::unique_lock hold(lock);
          (void)wake.wait_for(hold, over, limit, [] { return false; });
          if (!over.stop_requested()) examination.Interrupt();
        }) {}

 private:
  std::jthread thread_;
};

}  // namespace

Doctor::Doctor(std::shared_ptr<DiagnosisUi> window, std::unique_ptr<Examination> examination,
               Limits limits)
    : MThread("doctor"),
      window_(std::move(window)),
      examination_(std::move(examination)),
      limits_(limits) {}

void Doctor::Cancel() {
  MThread::Cancel();
  examination_->Close();
}

// Up to the login each step needs the one before it; what comes then can be tried by itself.
bool Doctor::IsInVain() const {
  return std::ranges::any_of(taken_, [](const DiagnosisStep& step) {
    return step.sign == Sign::Bad && step.kind <= Kind::Login;
  });
}

DiagnosisStep Doctor::Take(Kind kind, milliseconds limit) {
  const auto begin = steady_clock::now();
  DiagnosisStep step;
  {
    const StepWatch watch(*examination_, limit);
    step = examination_->Take(kind);
  }
  examination_->Resume();
  step.took = std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
  return step;
}

std::int32_t Doctor::Execute() {
  const auto begin = steady_clock::now();
  for (const Kind kind : examination_->Steps()) {
    const auto left =
        std::chrono::duration_cast<milliseconds>(begin + limits_.whole - steady_clock::now());
    DiagnosisStep step{.kind = kind, .name = examination_->NameOf(kind)};
    if (IsInVain()) {
      step.sign = Sign::LeftOut;
    } else if (left.count() <= 0) {
      step.sign = Sign::LeftOut;
      step.finding = Finding::Overtime;
      step.seen = Text("Left out: the check has taken too long already.");
    } else {
      if (!window_->ShowStep(step)) return 0;
      step = Take(kind, std::min(limits_.step, left));
    }
    if (Cancelled() || !window_->ShowStep(step)) return 0;
    taken_.push_back(std::move(step));
  }
  examination_->End();
  if (!Cancelled()) window_->ShowAdvice(AdviceFor(examination_->Where(), taken_));
  return 0;
}

}  // namespace corvane
