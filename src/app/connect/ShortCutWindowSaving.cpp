// What becomes of the changes in the list of shortcuts.

#include <QCloseEvent>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "app/connect/ConnectHost.h"
#include "app/connect/ShortCutItem.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutTree.h"
#include "app/connect/StartWin.h"
#include "app/shared/Alerts.h"
#include "app/shared/Shown.h"
#include "app/shared/StatusLine.h"
#include "sites/ShortcutStore.h"

namespace corvane {

void ShortCutWindow::Save(std::function<void()> then) {
  const auto store = [this, then = std::move(then)] { Store(then); };
  const int lost = ShortcutStore::CountOutOfReach();
  if (lost == 0) return store();
  Alerts::Show(this,
               {.title = tr("Warning!"),
                .text = tr("One stored shortcut cannot be read. Saving the list loses it and all "
                           "that lie behind it, %n in all.",
                           "", lost),
                .buttons = {tr("&Save Anyway"), tr("&Cancel")},
                .preset = 1,
                .heading = lost == 1 ? tr("Save the list and lose a shortcut?")
                                     : tr("Save the list and lose %n shortcuts?", "", lost),
                .advice = tr("One stored shortcut cannot be read. Saving the list loses it and all "
                             "that lie behind it.")},
               [store](int button) {
                 if (button == 0) store();
               });
}

// Sorting is for the eye: the menu keeps the order in which the shortcuts were made.
void ShortCutWindow::Store(std::function<void()> then) {
  if (std::exchange(saving_, true)) return;
  Sent sent{.then = std::move(then), .changes = changes_, .folders = list_->Folders()};
  for (const ShortCutItem* row : list_->InMenuOrder()) {
    sent.ids.push_back(row->Id());
    sent.rows.push_back(row->Edited());
  }
  auto rows = sent.rows;
  app_.KeepPasswords(std::move(rows),
                     [list = QPointer(this), sent = std::move(sent)](
                         const std::vector<Shortcut>& shortcuts, const Text& word) {
                       if (!list.isNull()) list->StoreAll(sent, shortcuts, word);
                     });
}

void ShortCutWindow::StoreAll(const Sent& sent, const std::vector<Shortcut>& shortcuts,
                              const Text& word) {
  saving_ = false;
  const std::vector<Shortcut> before = ShortcutStore::ReadForList().shortcuts;
  const Text failure = ShortcutStore::SaveAll(shortcuts, sent.folders);
  if (!failure.IsEmpty()) {
    return Alerts::Show(this, {.title = tr("Warning!"),
                               .text = tr("The shortcuts could not be saved."),
                               .detail = Shown(failure)});
  }
  app_.ForgetPasswords(before, shortcuts);
  for (ShortCutItem* row : list_->InMenuOrder()) {
    const auto at = std::ranges::find(sent.ids, row->Id()) - sent.ids.begin();
    const auto number = static_cast<std::size_t>(at);
    if (number >= sent.ids.size() || row->Record() != sent.rows[number].shortcut) continue;
    row->SetStored(shortcuts[number]);
  }
  if (changes_ == sent.changes) SetChanged(false);
  if (!word.IsEmpty()) status_->SetText(ShownInLine(word));
  app_.ConnectionWindow().MessageReceived(Message("REDO"_what));
  if (sent.then) sent.then();
}

void ShortCutWindow::AskAboutChanges(std::function<void()> then) {
  constexpr int kSave = 1;
  then_ = std::move(then);
  if (std::exchange(asking_, true)) return;
  Alerts::Show(this,
               {.title = tr("Alert!"),
                .text = tr("You have made some changes.  Would you like to save them or discard "
                           "them?"),
                .buttons = {tr("&Discard"), tr("&Save")},
                .preset = kSave,
                .dismissible = true,
                .heading = tr("Save the changes to the shortcuts?"),
                .advice = tr("They are lost if you discard them.")},
               [this](int button) {
                 asking_ = false;
                 auto next = std::exchange(then_, {});
                 if (button == kSave) return Save(std::move(next));
                 if (button == Alerts::kDismissed) return;
                 SetChanged(false);
                 next();
               });
}

void ShortCutWindow::closeEvent(QCloseEvent* event) {
  if (!changed_) return event->accept();
  event->ignore();
  AskAboutChanges([this] { close(); });
}

}  // namespace corvane
