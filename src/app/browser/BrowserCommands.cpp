#include "app/browser/BrowserCommands.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "app/browser/MWindow.h"
#include "kit/Message.h"
#include "remote/fileStruct.h"

namespace corvane {
namespace {

using Menu = BrowserCommand::Menu;
using When = BrowserCommand::When;

constexpr auto kWindow = BrowserCommand::Target::Window;
constexpr auto kServer = BrowserCommand::Target::Connection;
constexpr auto kProgram = BrowserCommand::Target::Program;

// The pop-up menu shows Ctrl+E at "Parent Dir", as it always has.
constexpr auto kCommands = std::to_array<BrowserCommand>({
    {"NWST"_what, kWindow, nullptr, Menu::File, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&Add Shortcut"), "Ctrl+S", nullptr, When::Always, 41,
     QT_TRANSLATE_NOOP("corvane::DirListView", "Add Shortcut"), "Ctrl+S", When::Always},
    {"SHMN"_what, kProgram, nullptr, Menu::File, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&New Connection"), "Ctrl+N", nullptr, When::Always, 0,
     nullptr, nullptr, When::Always},
    {"_QRQ"_what, kWindow, nullptr, Menu::File, 0, QT_TRANSLATE_NOOP("corvane::MWindow", "&Close"),
     "Ctrl+W", nullptr, When::Always, 0, nullptr, nullptr, When::Always},
    {"COPY"_what, kWindow, nullptr, Menu::Edit, 0, QT_TRANSLATE_NOOP("corvane::MWindow", "&Copy"),
     "Ctrl+C", nullptr, When::Copyable, 11, QT_TRANSLATE_NOOP("corvane::DirListView", "Copy URL"),
     "Ctrl+C", When::Always},
    {"SALL"_what, kWindow, nullptr, Menu::Edit, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "Select &All"), "Ctrl+A", nullptr, When::Focused, 0,
     nullptr, nullptr, When::Always},
    {"DWLD"_what, kWindow, nullptr, Menu::Commands, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&Download File"), "Ctrl+D", nullptr, When::Selected, 31,
     QT_TRANSLATE_NOOP("corvane::DirListView", "Download"), "Ctrl+D", When::Ready},
    {"UPLD"_what, kWindow, nullptr, Menu::Commands, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&Upload File"), "Ctrl+U", nullptr, When::Ready, 0,
     nullptr, nullptr, When::Always},
    {"DELE"_what, kWindow, nullptr, Menu::Commands, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "De&lete File"), "Ctrl+T", "Del", When::Selected, 33,
     QT_TRANSLATE_NOOP("corvane::DirListView", "Delete"), "Ctrl+T", When::Ready},
    {"RNFW"_what, kWindow, nullptr, Menu::Commands, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "R&ename File/Dir"), "Ctrl+E", "F2", When::Selected, 32,
     QT_TRANSLATE_NOOP("corvane::DirListView", "Rename"), "Ctrl+E", When::Ready},
    {"PCHN"_what, kServer, "..", Menu::Commands, 1,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&Parent Dir"), "Ctrl+Up", nullptr, When::Ready, 21,
     QT_TRANSLATE_NOOP("corvane::DirListView", "Parent Dir"), "Ctrl+E", When::Ready},
    {"PCHN"_what, kWindow, nullptr, Menu::Commands, 1,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&Change Dir"), "Ctrl+Down", nullptr, When::Place, 0,
     nullptr, nullptr, When::Always},
    {"MKDR"_what, kWindow, nullptr, Menu::Commands, 1,
     QT_TRANSLATE_NOOP("corvane::MWindow", "Create Di&r"), "Ctrl+M", nullptr, When::Ready, 34,
     QT_TRANSLATE_NOOP("corvane::DirListView", "Create Dir"), "Ctrl+M", When::Ready},
    {"PCHN"_what, kServer, ".", Menu::Commands, 1,
     QT_TRANSLATE_NOOP("corvane::MWindow", "Re&fresh Listing"), "Ctrl+.", nullptr, When::Ready, 22,
     QT_TRANSLATE_NOOP("corvane::DirListView", "Refresh Listing"), "Ctrl+.", When::Ready},
    {"VWDR"_what, kWindow, nullptr, Menu::Commands, 1,
     QT_TRANSLATE_NOOP("corvane::MWindow", "View Dir Li&sting"), "Ctrl+F", nullptr, When::Ready, 0,
     nullptr, nullptr, When::Always},
    {"VWFL"_what, kWindow, nullptr, Menu::Commands, 2,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&View File"), "Ctrl+L", nullptr, When::NoFolder, 12,
     QT_TRANSLATE_NOOP("corvane::DirListView", "View File"), "Ctrl+L", When::File},
    {"SHLG"_what, kWindow, nullptr, Menu::Windows, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&Log Window"), "Ctrl+K", nullptr, When::Always, 0,
     nullptr, nullptr, When::Always},
    {"SHLG"_what, kProgram, nullptr, Menu::Windows, 0,
     QT_TRANSLATE_NOOP("corvane::MWindow", "&Transfer List"), "Ctrl+X", nullptr, When::Always, 0,
     nullptr, nullptr, When::Always},
});

QString Shown(const char* key) {
  return QKeySequence(key).toString(QKeySequence::NativeText);
}

}  // namespace

std::span<const BrowserCommand> BrowserCommands::All() {
  return kCommands;
}

bool BrowserCommands::IsEnabled(When when, const CommandState& state) {
  const bool selected = state.selected != 0;
  const bool directory = state.selected == kDirectory;
  switch (when) {
    case When::Always: return true;
    case When::Ready: return state.ready;
    case When::Selected: return state.ready && selected;
    case When::NoFolder: return state.ready && selected && !directory;
    case When::File: return state.ready && state.selected == kFile;
    case When::Place: return state.ready && (state.pathUsed || directory);
    case When::Copyable: return selected || state.pathUsed;
    case When::Focused: return state.anyUsed;
  }
  return false;
}

BrowserCommands::BrowserCommands(QMenuBar& bar, Run run,
                                 const std::function<void(QMenu&, int)>& windows) {
  MakeMenu(bar, Menu::File, MWindow::tr("&File"), run);
  MakeMenu(bar, Menu::Edit, MWindow::tr("&Edit"), run);
  commands_ = MakeMenu(bar, Menu::Commands, MWindow::tr("&Commands"), run);
  QMenu* menu = MakeMenu(bar, Menu::Windows, MWindow::tr("&Windows"), run);
  // The key is shown here too but belongs to "New Connection": a key of two items works for none.
  const auto* connection = std::ranges::find(kCommands, "SHMN"_what, &BrowserCommand::code);
  menu->addAction(MWindow::tr("&Control Window") + '\t' + Shown(connection->key), this,
                  [run = std::move(run), connection] { run(*connection); });
  const auto fixed = static_cast<int>(menu->actions().size());
  connect(menu, &QMenu::aboutToShow, this, [menu, fixed, windows] { windows(*menu, fixed); });
}

QMenu* BrowserCommands::MakeMenu(QMenuBar& bar, Menu which, const QString& title, const Run& run) {
  QMenu* menu = bar.addMenu(title);
  int group = 0;
  for (const BrowserCommand& command : kCommands) {
    if (command.menu != which) continue;
    if (command.group != group) menu->addSeparator();
    group = command.group;
    QAction* action = menu->addAction(MWindow::tr(command.text), QKeySequence(command.key), this,
                                      [run, &command] { run(command); });
    if (command.second != nullptr) {
      action->setShortcuts({action->shortcut(), QKeySequence(command.second)});
    }
    actions_[&command] = action;
  }
  connect(menu, &QMenu::aboutToShow, this, &BrowserCommands::MenusBeginning);
  return menu;
}

QMenu* BrowserCommands::MakePopUp(QWidget* parent, const CommandState& state, const Run& run) {
  constexpr int kPerGroup = 10;
  std::vector<const BrowserCommand*> items;
  for (const BrowserCommand& command : kCommands) {
    if (command.popUp != 0) items.push_back(&command);
  }
  std::ranges::sort(items, {}, &BrowserCommand::popUp);
  auto* menu = new QMenu(parent);
  menu->setObjectName("PopUpMenu");
  int group = items.front()->popUp / kPerGroup;
  for (const BrowserCommand* command : items) {
    if (command->popUp / kPerGroup != group) menu->addSeparator();
    group = command->popUp / kPerGroup;
    QAction* action =
        menu->addAction(QCoreApplication::translate("corvane::DirListView", command->popUpText) +
                        '\t' + Shown(command->popUpKey));
    action->setEnabled(IsEnabled(command->popUpWhen, state));
    connect(action, &QAction::triggered, parent, [run, command] { run(*command); });
  }
  return menu;
}

QString BrowserCommands::Keys() {
  QString lines;
  for (const BrowserCommand& command : kCommands) {
    QString keys = command.key;
    if (command.second != nullptr) keys += QStringLiteral(", ") + command.second;
    lines += keys + '\t' + QString(command.text).remove('&') + '\n';
  }
  return lines;
}

void BrowserCommands::Update(const CommandState& state) {
  for (const auto& [command, action] : actions_) {
    action->setEnabled(IsEnabled(command->when, state));
  }
}

void BrowserCommands::SetCommandsEnabled(bool enabled) {
  commands_->setEnabled(enabled);
}

}  // namespace corvane
