#include "app/browser/ExistingAlerts.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/browser/MWindow.h"
#include "app/shared/Alerts.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

using There = TransferPlan::There;

/// Every button but the last, which cancels, stands for the policy at its place.
void Ask(MWindow& window, Alerts::Question question, const std::vector<Policy>& policies,
         TransferPlan plan, const ExistingAlerts::Then& then) {
  question.title = MWindow::tr("Alert!");
  question.buttons.append(MWindow::tr("Cancel"));
  Alerts::Show(&window, question, [policies, plan = std::move(plan), then](int button) mutable {
    if (button >= static_cast<int>(policies.size())) return;
    plan.SetForExisting(policies[static_cast<std::size_t>(button)]);
    then(std::move(plan));
  });
}

void AskAboutFile(MWindow& window, TransferPlan plan, const ExistingAlerts::Then& then) {
  const TransferPlan::Entry& entry = plan.entries.front();
  const QString name = ToText(entry.local);
  Alerts::Question question;
  if (entry.there == There::SameSize) {
    question.text = MWindow::tr("You have already downloaded the file %1.").arg(name) + "\n\n" +
                    MWindow::tr("Would you like to download the file again?");
    question.buttons = {MWindow::tr("&Download")};
    return Ask(window, question, {Policy::Replace}, std::move(plan), then);
  }
  question.text = MWindow::tr("Part of the file %1 already exists.").arg(name) + "\n\n" +
                  MWindow::tr("Would you like to overwrite or reget the file?");
  question.buttons = {MWindow::tr("&Reget"), MWindow::tr("&Overwrite")};
  Ask(window, question, {Policy::Resume, Policy::Replace}, std::move(plan), then);
}

void AskAboutFolder(MWindow& window, TransferPlan plan, const ExistingAlerts::Then& then) {
  Alerts::Question question;
  question.text = MWindow::tr(
                      "The folder \"%1\" exists already.\n\nFiles in it that have the same "
                      "names as those on the server are replaced.")
                      .arg(ToText(plan.entries.front().local));
  question.buttons = {MWindow::tr("&Download")};
  question.preset = 1;
  Ask(window, question, {Policy::Replace}, std::move(plan), then);
}

void SettleSeveral(MWindow& window, TransferPlan plan, int existing,
                   const ExistingAlerts::Then& then) {
  const bool folders = std::ranges::any_of(
      plan.entries, [](const TransferPlan::Entry& entry) { return entry.there == There::Folder; });
  Alerts::Question question;
  if (folders) {
    question.text =
        (existing == 1
             ? MWindow::tr("1 of these entries exists already. Overwrite it?")
             : MWindow::tr("%n of these entries exist already. Overwrite them?", "", existing)) +
        "\n\n" +
        MWindow::tr(
            "Files in folders that have the same names as those on the server are replaced.");
  } else {
    question.text = existing == 1 ? MWindow::tr("1 of these files exists already. Overwrite it?")
                                  : MWindow::tr("%n of these files exist already. Overwrite them?",
                                                "", existing);
  }
  question.buttons = {MWindow::tr("&Overwrite"),
                      existing == 1 ? MWindow::tr("&Skip it") : MWindow::tr("&Skip them")};
  question.preset = 1;
  Ask(window, question, {Policy::Replace, Policy::Skip}, std::move(plan), then);
}

}  // namespace

void ExistingAlerts::SettleDownload(MWindow& window, TransferPlan plan, const Then& then) {
  const auto existing = static_cast<int>(plan.CountExisting());
  if (plan.entries.size() > 1) return SettleSeveral(window, std::move(plan), existing, then);
  plan.entries.front().IsMerged() ? AskAboutFolder(window, std::move(plan), then)
                                  : AskAboutFile(window, std::move(plan), then);
}

void ExistingAlerts::SettleUpload(MWindow& window, TransferPlan plan, const Then& then) {
  const auto existing = static_cast<int>(plan.CountExisting());
  Alerts::Question question;
  question.text =
      existing == 1
          ? MWindow::tr("1 of these names exists on the server already. Replace what is there?")
          : MWindow::tr("%n of these names exist on the server already. Replace what is there?", "",
                        existing);
  question.buttons = {MWindow::tr("&Replace"),
                      existing == 1 ? MWindow::tr("&Skip it") : MWindow::tr("&Skip them")};
  question.preset = 1;
  Ask(window, question, {Policy::Replace, Policy::Skip}, std::move(plan), then);
}

}  // namespace corvane
