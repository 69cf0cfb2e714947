#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "remote/Diagnosis.h"
#include "workers/MThread.h"

namespace corvane {

/// Takes the steps of an examination one after another, each within its time, shows them, and says
/// what is to be done.
class Doctor final : public MThread {
 public:
  struct Limits {
    std::chrono::milliseconds step{10'000};
    std::chrono::milliseconds whole{60'000};
  };

  Doctor(std::shared_ptr<DiagnosisUi> window, std::unique_ptr<Examination> examination,
         Limits limits);
  Doctor(std::shared_ptr<DiagnosisUi> window, std::unique_ptr<Examination> examination)
      : Doctor(std::move(window), std::move(examination), Limits()) {}

  void Cancel() override;

 private:
  std::int32_t Execute() override;
  /// Whether there is no point in another step.
  [[nodiscard]] bool IsInVain() const;
  [[nodiscard]] DiagnosisStep Take(DiagnosisStep::Kind kind, std::chrono::milliseconds limit);

  const std::shared_ptr<DiagnosisUi> window_;
  const std::unique_ptr<Examination> examination_;
  const Limits limits_;
  std::vector<DiagnosisStep> taken_;
};

}  // namespace corvane
