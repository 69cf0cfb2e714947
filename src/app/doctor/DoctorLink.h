#pragma once

#include <QPointer>
#include <atomic>
#include <memory>

#include "app/doctor/DoctorWindow.h"
#include "app/shared/GuiThread.h"

namespace corvane {

/// The window as what looks at the connection sees it; outlives it.
class DoctorLink final : public DiagnosisUi, public std::enable_shared_from_this<DoctorLink> {
 public:
  explicit DoctorLink(DoctorWindow& window) : window_(&window) {}

  /// GUI thread: from now on nothing reaches the window.
  void Close() { closing_ = true; }

  bool ShowStep(const DiagnosisStep& step) override {
    return Hop([step](DoctorWindow& window) { window.ShowStep(step); });
  }
  bool ShowAdvice(const Advice& advice) override {
    return Hop([advice](DoctorWindow& window) { window.ShowAdvice(advice); });
  }

 private:
  template <typename Call>
  bool Hop(Call call) {
    if (closing_) return false;
    OnGuiThread([self = shared_from_this(), call] {
      if (!self->closing_ && !self->window_.isNull()) call(*self->window_);
    });
    return true;
  }

  const QPointer<DoctorWindow> window_;  // looked at on the GUI thread only
  std::atomic<bool> closing_{false};
};

}  // namespace corvane
