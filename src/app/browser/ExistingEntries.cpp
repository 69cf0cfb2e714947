#include "app/browser/ExistingEntries.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/browser/BrowserSession.h"
#include "app/browser/ExistingAlerts.h"
#include "app/browser/ExistingQuestion.h"
#include "app/browser/MWindow.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

using Entry = TransferPlan::Entry;
using There = TransferPlan::There;

/// A plan on its way through the questions about its entries.
struct Asking {
  TransferPlan plan;
  bool download = true;
  ExistingEntries::Then then;
  std::size_t next = 0;  // the first entry that may still be asked about
  bool forOthers = false;
};

/// Asks about one entry after the other, until an answer holds for all that are left.
void AskNext(MWindow& window, const std::shared_ptr<Asking>& asking) {
  std::vector<Entry>& entries = asking->plan.entries;
  const auto from = entries.begin() + static_cast<std::ptrdiff_t>(asking->next);
  const auto asked = std::find_if(from, entries.end(), std::mem_fn(&Entry::IsReplaceable));
  if (asked == entries.end()) return asking->then(std::move(asking->plan));
  asking->next = static_cast<std::size_t>(asked - entries.begin()) + 1;
  ExistingQuestion question(window, asking->plan, *asked, asking->download);
  for (auto other = asked + 1; other != entries.end(); ++other) {
    if (other->IsReplaceable()) question.AddOther(*other);
  }
  question.Ask([&window, asking, asked](Policy policy, bool forOthers) {
    const auto last = forOthers ? asking->plan.entries.end() : asked + 1;
    std::for_each(asked, last, [policy](Entry& entry) {
      if (entry.IsReplaceable()) entry.Settle(policy);
    });
    if (forOthers) return asking->then(std::move(asking->plan));
    AskNext(window, asking);
  });
}

QString KindThere(const Entry& entry) {
  if (entry.there == There::Folder) return MWindow::tr("a folder");
  if (entry.there == There::Link) return MWindow::tr("a link");
  return entry.kind == RemoteEntry::Kind::Directory ? MWindow::tr("no folder")
                                                    : MWindow::tr("no plain file");
}

void SayIsLeftAlone(MWindow& window, const Entry& entry, bool download) {
  const std::string encoding = download ? std::string() : window.Session().To().encoding;
  const QString text = download
                           ? MWindow::tr("\"%1\" in the download folder is %2 and is left alone.")
                           : MWindow::tr("\"%1\" on the server is %2 and is left alone.");
  window.Warn(text.arg(ToText(entry.local, encoding), KindThere(entry)));
}

void Settle(MWindow& window, TransferPlan plan, bool download, ExistingEntries::Then then) {
  if (plan.CountExisting() == 0) return then(std::move(plan));
  const bool asksOfEach = Style::InForce().AsksOfEachEntry();
  const std::optional<Policy> preset = ExistingEntries::Preset();
  const Entry& first = plan.entries.front();
  if (plan.entries.size() == 1 && !first.IsReplaceable() && (download || asksOfEach) &&
      preset != Policy::KeepBoth && preset != Policy::Skip) {
    return SayIsLeftAlone(window, first, download);
  }
  if (preset) {
    plan.SettleExisting(*preset);
    return then(std::move(plan));
  }
  if (asksOfEach) {
    return AskNext(window,
                   std::make_shared<Asking>(Asking{std::move(plan), download, std::move(then)}));
  }
  download ? ExistingAlerts::SettleDownload(window, std::move(plan), then)
           : ExistingAlerts::SettleUpload(window, std::move(plan), then);
}

}  // namespace

std::optional<Policy> ExistingEntries::Preset() {
  const std::int32_t preset = ProcessSettings::Get().existing;
  const auto number = [](Policy policy) { return static_cast<std::int32_t>(policy); };
  if (preset < number(Policy::Replace) || preset > number(Policy::KeepBoth)) return std::nullopt;
  return static_cast<Policy>(preset);
}

void ExistingEntries::SettleDownload(MWindow& window, TransferPlan plan, Then then) {
  Settle(window, std::move(plan), true, std::move(then));
}

void ExistingEntries::SettleUpload(MWindow& window, TransferPlan plan, Then then) {
  Settle(window, std::move(plan), false, std::move(then));
}

}  // namespace corvane
