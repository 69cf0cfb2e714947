#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "app/shared/Alerts.h"
#include "workers/TransferPlan.h"

namespace corvane {

class MWindow;

/// The question about one entry that is there already: what is known of both, and the choices, of
/// which the one that changes nothing is preset. GUI thread.
class ExistingQuestion {
 public:
  using Answer = std::function<void(Policy policy, bool forOthers)>;

  /// `entry` is one of `plan` that can be replaced; both are used until Ask returns.
  ExistingQuestion(MWindow& window, const TransferPlan& plan, const TransferPlan::Entry& entry,
                   bool download);

  /// One more that would be asked about: the user can choose for all of them.
  void AddOther(const TransferPlan::Entry& entry);
  /// `then` is not called when the user cancels.
  void Ask(Answer then) const;

 private:
  struct Choice {
    Policy policy;
    QString verb;
    QString explanation;
  };

  [[nodiscard]] std::vector<Choice> OfFile() const;
  [[nodiscard]] std::vector<Choice> OfFolder() const;
  [[nodiscard]] QString Advice() const;
  [[nodiscard]] std::vector<QStringList> Facts() const;
  [[nodiscard]] QString ForOthers() const;
  /// A name or path on the side that is written to.
  [[nodiscard]] QString Shown(const std::string& raw) const;

  MWindow& window_;
  const TransferPlan& plan_;
  const TransferPlan::Entry& entry_;
  const bool download_;
  int others_ = 0;
  bool foldersToo_ = false;  // among the others
};

}  // namespace corvane
