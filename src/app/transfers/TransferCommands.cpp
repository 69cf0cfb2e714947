#include "app/transfers/TransferCommands.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <array>

#include "app/transfers/TransferItem.h"
#include "kit/Message.h"

namespace corvane {
namespace {

using Menu = TransferCommand::Menu;
using When = TransferCommand::When;

QString KeyText(const char* keys) {
  const QList<QKeySequence> all = QKeySequence::listFromString(keys);
  return all.isEmpty() ? QString() : '\t' + all.first().toString(QKeySequence::NativeText);
}

}  // namespace

std::span<const TransferCommand> TransferCommands::All() {
  // clang-format off
  static constexpr auto kCommands = std::to_array<TransferCommand>({
      {"CNCL"_what, Menu::File, 0, When::Running, "Ctrl+.", QT_TR_NOOP("&Cancel Transfer"),
       QT_TR_NOOP("Cancels what is selected"), 1, QT_TR_NOOP("Cancel Transfer")},
      {"REMI"_what, Menu::File, 0, When::Ended, "Backspace", QT_TR_NOOP("&Remove Item"),
       QT_TR_NOOP("Takes what is selected and has ended off the list"), 1, QT_TR_NOOP("Remove Item")},
      {"RTRY"_what, Menu::File, 1, When::Retryable, "Ctrl+R", QT_TR_NOOP("Re&try"),
       QT_TR_NOOP("Begins again what is selected and has failed"), 2, QT_TR_NOOP("Retry")},
      {"RTAL"_what, Menu::File, 1, When::AnyFailed, "Ctrl+Shift+R", QT_TR_NOOP("Retry &Failed"),
       QT_TR_NOOP("Begins everything again that failed or was cancelled")},
      {"RMFN"_what, Menu::File, 1, When::AnyDone, "Ctrl+Shift+D", QT_TR_NOOP("Remove Fini&shed"),
       QT_TR_NOOP("Takes everything that is done off the list")},
      {"TGGL"_what, Menu::None, 0, When::Noted, "Space", QT_TR_NOOP("Show or Hide Details"),
       QT_TR_NOOP("Shows or hides what failed in a directory"), 2},
      {"_RRC"_what, Menu::None, 0, When::Download, "", QT_TR_NOOP("Reveal in Tracker"),
       QT_TR_NOOP("Shows the download in its folder"), 3},
      {"CRSS"_what, Menu::None, 0, When::Always, "Delete", QT_TR_NOOP("Cancel or Remove"),
       QT_TR_NOOP("Cancels what runs of the selection, takes the rest of it off the list")},
      {"OPEN"_what, Menu::None, 0, When::Always, "Return; Enter", QT_TR_NOOP("Retry, Reveal or Show Details"),
       QT_TR_NOOP("Begins again what has failed, shows a finished download in its folder")},
      {"HELP"_what, Menu::File, 2, When::Always, "F1", QT_TR_NOOP("&Help"),
       QT_TR_NOOP("Opens the manual")},
      {"_QRQ"_what, Menu::File, 2, When::Always, "Ctrl+W", QT_TR_NOOP("C&lose"),
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
    case When::AnyFailed: return state.anyFailed;
    case When::AnyDone: return state.anyDone;
    default: break;
  }
  if (state.row == nullptr) return false;
  switch (when) {
    case When::Running: return state.row->Running();
    case When::Ended: return !state.row->Running();
    case When::Retryable: return state.row->CanRetry();
    case When::Download: return state.row->IsDownload();
    case When::Noted: return state.row->HasNotes();
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
  for (const TransferCommand& command : All()) {
    if (command.popUp == 0) continue;
    const bool enabled = IsEnabled(command.when, state);
    // The first two are always there; what can never be done with a row has no item.
    if (command.popUp > 1 && !enabled) continue;
    if (command.popUp != group) menu->addSeparator();
    group = command.popUp;
    const char* text = command.popUpText != nullptr ? command.popUpText : command.text;
    // "Remove Item" shows no key here.
    const bool keyed = command.when != When::Ended;
    QAction* action = menu->addAction(tr(text) + (keyed ? KeyText(command.keys) : QString()));
    action->setToolTip(tr(command.help));
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, parent, [run, &command] { run(command.code); });
  }
  return menu;
}

void TransferCommands::Update(const TransferCommandState& state) {
  for (const auto& [command, action] : actions_) {
    const bool ofAny = command->when == When::AnyFailed || command->when == When::AnyDone;
    if (state.row != nullptr || ofAny) action->setEnabled(IsEnabled(command->when, state));
  }
}

}  // namespace corvane
