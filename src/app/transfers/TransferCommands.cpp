#include "app/transfers/TransferCommands.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <algorithm>
#include <array>
#include <vector>

#include "app/shared/Style.h"
#include "app/transfers/TransferItem.h"
#include "kit/Message.h"
#include "queue/TransferQueue.h"

namespace corvane {
namespace {

using Menu = TransferCommand::Menu;
using When = TransferCommand::When;

QString KeyText(const char* keys) {
  const QList<QKeySequence> all = QKeySequence::listFromString(keys);
  return all.isEmpty() ? QString() : '\t' + all.first().toString(QKeySequence::NativeText);
}

std::vector<const TransferCommand*> PopUpOrder() {
  std::vector<const TransferCommand*> order;
  for (const TransferCommand& command : TransferCommands::All())
    if (command.popUp != 0) order.push_back(&command);
  std::ranges::stable_sort(order, {}, &TransferCommand::popUp);
  return order;
}

}  // namespace

std::span<const TransferCommand> TransferCommands::All() {
  // clang-format off
  static constexpr auto kCommands = std::to_array<TransferCommand>({
      {"CNCL"_what, Menu::File, 0, When::Going, "Ctrl+.", QT_TR_NOOP("&Cancel Transfer"),
       QT_TR_NOOP("Cancels what is selected"), 1, QT_TR_NOOP("Cancel Transfer")},
      {"REMI"_what, Menu::File, 0, When::Ended, "Backspace", QT_TR_NOOP("&Remove Item"),
       QT_TR_NOOP("Takes what is selected and has ended off the list"), 1, QT_TR_NOOP("Remove Item")},
      {"PAUS"_what, Menu::File, 1, When::Pausable, "Ctrl+P", QT_TR_NOOP("&Pause"),
       QT_TR_NOOP("Pauses what is selected; what has come stays"), 2, QT_TR_NOOP("Pause")},
      {"RSUM"_what, Menu::File, 1, When::Paused, "Ctrl+U", QT_TR_NOOP("Res&ume"),
       QT_TR_NOOP("Goes on with what is selected and paused"), 2, QT_TR_NOOP("Resume")},
      {"RTRY"_what, Menu::File, 1, When::Retryable, "Ctrl+R", QT_TR_NOOP("Re&try"),
       QT_TR_NOOP("Tries once more what is selected and has failed"), 2, QT_TR_NOOP("Retry")},
      {"TRYN"_what, Menu::File, 1, When::Again, "Ctrl+T", QT_TR_NOOP("Try &Now"),
       QT_TR_NOOP("Ends the wait before what is selected is tried again"), 2, QT_TR_NOOP("Try Now")},
      {"MVUP"_what, Menu::File, 2, When::NotFirst, "Alt+Up", QT_TR_NOOP("&Move Up"),
       QT_TR_NOOP("Gives what is selected an earlier turn"), 3, QT_TR_NOOP("Move Up")},
      {"MVDN"_what, Menu::File, 2, When::NotLast, "Alt+Down", QT_TR_NOOP("Move &Down"),
       QT_TR_NOOP("Gives what is selected a later turn"), 3, QT_TR_NOOP("Move Down")},
      {"PALL"_what, Menu::File, 3, When::AnyToPause, "Ctrl+Shift+P", QT_TR_NOOP("P&ause All"),
       QT_TR_NOOP("Pauses everything that runs or waits")},
      {"RALL"_what, Menu::File, 3, When::AnyPaused, "Ctrl+Shift+U", QT_TR_NOOP("Resum&e All"),
       QT_TR_NOOP("Goes on with everything that is paused")},
      {"RTAL"_what, Menu::File, 3, When::AnyFailed, "Ctrl+Shift+R", QT_TR_NOOP("Retry &Failed"),
       QT_TR_NOOP("Tries everything once more that failed or was cancelled")},
      {"RMFN"_what, Menu::File, 3, When::AnyDone, "Ctrl+Shift+D", QT_TR_NOOP("Remove Fini&shed"),
       QT_TR_NOOP("Takes everything that is done off the list")},
      {"OPFL"_what, Menu::File, 4, When::Fetched, "Ctrl+O", QT_TR_NOOP("&Open"),
       QT_TR_NOOP("Opens a downloaded file in its program"), 5, QT_TR_NOOP("Open")},
      {"CPYA"_what, Menu::File, 4, When::Row, "Ctrl+C", QT_TR_NOOP("Cop&y Address"),
       QT_TR_NOOP("Copies the addresses of what is selected, without a password"), 4,
       QT_TR_NOOP("Copy Address")},
      {"DIAG"_what, Menu::File, 4, When::Row, "Ctrl+F1", QT_TR_NOOP("&What Is Wrong?"),
       QT_TR_NOOP("Looks at the connection of what is selected step by step"), 4, QT_TR_NOOP("What Is Wrong?")},
      {"_RRC"_what, Menu::File, 4, When::Download, "Ctrl+E", QT_TR_NOOP("Show &in Folder"),
       QT_TR_NOOP("Shows the download in its folder"), 5, QT_TR_NOOP("Show in Folder"),
       QT_TR_NOOP("Reveal in Tracker")},
      {"TGGL"_what, Menu::None, 0, When::Noted, "Space", QT_TR_NOOP("Show or Hide Details"),
       QT_TR_NOOP("Shows or hides what failed in a directory"), 2},
      {"CRSS"_what, Menu::None, 0, When::Always, "Delete", QT_TR_NOOP("Cancel or Remove"),
       QT_TR_NOOP("Cancels what has not ended of the selection, takes the rest of it off the list")},
      {"OPEN"_what, Menu::None, 0, When::Always, "Return; Enter", QT_TR_NOOP("Resume, Retry, Reveal or Show Details"),
       QT_TR_NOOP("Goes on with what is paused or has failed, shows a finished download in its folder")},
      {"HELP"_what, Menu::File, 5, When::Always, "F1", QT_TR_NOOP("&Help"),
       QT_TR_NOOP("Opens the manual")},
      {"_QRQ"_what, Menu::File, 5, When::Always, "Ctrl+W", QT_TR_NOOP("C&lose"),
       QT_TR_NOOP("Closes the window; the transfers go on")},
      {"SHMN"_what, Menu::Windows, 0, When::Always, "Ctrl+N", QT_TR_NOOP("&Control Window"),
       QT_TR_NOOP("Brings the connection window forward")},
  });
  // clang-format on
  return kCommands;
}

bool TransferCommands::IsEnabled(When when, const TransferCommandState& state) {
  switch (when) {
    case When::Always: return true;
    case When::AnyToPause: return state.any.anyToPause;
    case When::AnyPaused: return state.any.anyPaused;
    case When::AnyFailed: return state.any.anyFailed;
    case When::AnyDone: return state.any.anyDone;
    default: return state.row != nullptr && FitsRow(when, state);
  }
}

bool TransferCommands::FitsRow(When when, const TransferCommandState& state) {
  const TransferItem& row = *state.row;
  switch (when) {
    case When::Row: return true;
    case When::Going: return !row.HasEnded();
    case When::Ended: return row.HasEnded();
    case When::Pausable: return TransferQueue::CanPause(row.Stands());
    case When::Paused: return TransferQueue::CanResume(row.Stands());
    case When::Retryable: return TransferQueue::CanRetry(row.Stands());
    case When::Again: return TransferQueue::CanTryNow(row.Stands());
    case When::Download: return row.IsDownload();
    case When::Fetched: return row.IsDownload() && row.Finished() && !row.IsSeveral();
    case When::Noted: return row.HasNotes();
    case When::NotFirst: return !state.first;
    case When::NotLast: return !state.last;
    default: return false;
  }
}

TransferCommands::TransferCommands(QMenuBar& bar, QWidget* list, const Run& run,
                                   const std::function<void(QMenu&, int)>& windows)
    : QObject(&bar) {
  // Keys work for every selection, the items follow one row: of several rows the last one need not
  // run for others to be cancelled.
  for (const TransferCommand& command : All()) {
    const bool inList = command.menu == Menu::None;
    for (const QKeySequence& key : QKeySequence::listFromString(command.keys)) {
      auto* shortcut = new QShortcut(key, inList ? list : bar.window());
      if (inList) shortcut->setContext(Qt::WidgetShortcut);
      connect(shortcut, &QShortcut::activated, this, [run, &command] { run(command.code); });
    }
  }
  MakeMenu(bar, Menu::File, tr("&File"), run);
  QMenu* menu = MakeMenu(bar, Menu::Windows, tr("&Windows"), run);
  const auto fixed = static_cast<int>(menu->actions().size());
  connect(menu, &QMenu::aboutToShow, this, [menu, fixed, windows] { windows(*menu, fixed); });
}

QMenu* TransferCommands::MakeMenu(QMenuBar& bar, Menu which, const QString& title, const Run& run) {
  QMenu* menu = bar.addMenu(title);
  menu->setToolTipsVisible(true);
  int group = 0;
  for (const TransferCommand& command : All()) {
    if (command.menu != which) continue;
    if (command.group != group) menu->addSeparator();
    group = command.group;
    QAction* action = menu->addAction(tr(command.text) + KeyText(command.keys), this,
                                      [run, &command] { run(command.code); });
    action->setToolTip(tr(command.help));
    action->setEnabled(command.when == When::Always);
    actions_[&command] = action;
  }
  connect(menu, &QMenu::aboutToShow, this, &TransferCommands::MenusBeginning);
  return menu;
}

QMenu* TransferCommands::MakePopUp(QWidget* parent, const TransferCommandState& state,
                                   const Run& run) {
  auto* menu = new QMenu(parent);
  menu->setObjectName("PopUpMenu");
  menu->setToolTipsVisible(true);
  int group = 1;
  for (const TransferCommand* each : PopUpOrder()) {
    const TransferCommand& command = *each;
    const bool enabled = IsEnabled(command.when, state);
    // The first two are always there; what can never be done with a row has no item.
    if (command.popUp > 1 && !enabled) continue;
    if (command.popUp != group) menu->addSeparator();
    group = command.popUp;
    const char* text = command.popUpText != nullptr ? command.popUpText : command.text;
    if (command.described != nullptr) text = Style::InForce().ItemText(text, command.described);
    // "Remove Item" shows no key here.
    const bool keyed = command.when != When::Ended;
    QAction* action = menu->addAction(tr(text) + (keyed ? KeyText(command.keys) : QString()));
    action->setToolTip(tr(command.help));
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, parent, [run, each] { run(each->code); });
  }
  return menu;
}

void TransferCommands::Update(const TransferCommandState& state) {
  for (const auto& [command, action] : actions_) {
    const bool ofAny = command->when >= When::AnyToPause;
    if (state.row != nullptr || ofAny) action->setEnabled(IsEnabled(command->when, state));
  }
}

}  // namespace corvane
