#include "app/browser/BrowserCommands.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "kit/Message.h"
#include "remote/fileStruct.h"

namespace corvane {
namespace {

using Menu = BrowserCommand::Menu;
using When = BrowserCommand::When;

constexpr auto kWindow = BrowserCommand::Target::Window;
constexpr auto kServer = BrowserCommand::Target::Connection;
constexpr auto kProgram = BrowserCommand::Target::Program;

QString KeyText(const char* key) {
  return QKeySequence(key).toString(QKeySequence::NativeText);
}

}  // namespace

// Beside "Parent Dir" the pop-up menu shows a key that is not its own.
std::span<const BrowserCommand> BrowserCommands::All() {
  // clang-format off
  static constexpr auto kCommands = std::to_array<BrowserCommand>({
      {"NWST"_what, kWindow, Menu::File, 0, When::Always, "Ctrl+S", QT_TR_NOOP("&Add Shortcut"),
       {41, "Ctrl+S", QT_TR_NOOP("Add Shortcut"), When::Always}},
      {"SHMN"_what, kProgram, Menu::File, 0, When::Always, "Ctrl+N", QT_TR_NOOP("&New Connection")},
      {"_QRQ"_what, kWindow, Menu::File, 0, When::Always, "Ctrl+W", QT_TR_NOOP("&Close")},
      {"COPY"_what, kWindow, Menu::Edit, 0, When::Copyable, "Ctrl+C", QT_TR_NOOP("&Copy"),
       {11, "Ctrl+C", QT_TR_NOOP("Copy URL"), When::Always}},
      {"SALL"_what, kWindow, Menu::Edit, 0, When::Focused, "Ctrl+A", QT_TR_NOOP("Select &All")},
      {"DWLD"_what, kWindow, Menu::Commands, 0, When::Selected, "Ctrl+D", QT_TR_NOOP("&Download File"),
       {31, "Ctrl+D", QT_TR_NOOP("Download"), When::Ready}},
      {"UPLD"_what, kWindow, Menu::Commands, 0, When::Ready, "Ctrl+U", QT_TR_NOOP("&Upload File")},
      {"DELE"_what, kWindow, Menu::Commands, 0, When::Selected, "Ctrl+T; Delete", QT_TR_NOOP("De&lete File"),
       {33, "Ctrl+T", QT_TR_NOOP("Delete"), When::Ready}},
      {"RNFW"_what, kWindow, Menu::Commands, 0, When::Selected, "Ctrl+E; F2", QT_TR_NOOP("R&ename File/Dir"),
       {32, "Ctrl+E", QT_TR_NOOP("Rename"), When::Ready}},
      {"PCHN"_what, kServer, Menu::Commands, 1, When::Ready, "Ctrl+Up", QT_TR_NOOP("&Parent Dir"),
       {21, "Ctrl+E", QT_TR_NOOP("Parent Dir"), When::Ready}, ".."},
      {"PCHN"_what, kWindow, Menu::Commands, 1, When::Place, "Ctrl+Down", QT_TR_NOOP("&Change Dir")},
      {"MKDR"_what, kWindow, Menu::Commands, 1, When::Ready, "Ctrl+M", QT_TR_NOOP("Create Di&r"),
       {34, "Ctrl+M", QT_TR_NOOP("Create Dir"), When::Ready}},
      {"PCHN"_what, kServer, Menu::Commands, 1, When::Ready, "Ctrl+.", QT_TR_NOOP("Re&fresh Listing"),
       {22, "Ctrl+.", QT_TR_NOOP("Refresh Listing"), When::Ready}, "."},
      {"VWDR"_what, kWindow, Menu::Commands, 1, When::Ready, "Ctrl+F", QT_TR_NOOP("View Dir Li&sting")},
      {"VWFL"_what, kWindow, Menu::Commands, 2, When::NoFolder, "Ctrl+L", QT_TR_NOOP("&View File"),
       {12, "Ctrl+L", QT_TR_NOOP("View File"), When::File}},
      {"SHLG"_what, kWindow, Menu::Windows, 0, When::Always, "Ctrl+K", QT_TR_NOOP("&Log Window")},
      {"SHLG"_what, kProgram, Menu::Windows, 0, When::Always, "Ctrl+X", QT_TR_NOOP("&Transfer List")},
  });
  // clang-format on
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
  MakeMenu(bar, Menu::File, tr("&File"), run);
  MakeMenu(bar, Menu::Edit, tr("&Edit"), run);
  commands_ = MakeMenu(bar, Menu::Commands, tr("&Commands"), run);
  QMenu* menu = MakeMenu(bar, Menu::Windows, tr("&Windows"), run);
  // The key is shown here too but belongs to "New Connection": a key of two items works for none.
  const auto connection = std::ranges::find(All(), "SHMN"_what, &BrowserCommand::code);
  menu->addAction(tr("&Control Window") + '\t' + KeyText(connection->keys), this,
                  [run = std::move(run), &command = *connection] { run(command); });
  const auto fixed = static_cast<int>(menu->actions().size());
  connect(menu, &QMenu::aboutToShow, this, [menu, fixed, windows] { windows(*menu, fixed); });
}

QMenu* BrowserCommands::MakeMenu(QMenuBar& bar, Menu which, const QString& title, const Run& run) {
  QMenu* menu = bar.addMenu(title);
  int group = 0;
  for (const BrowserCommand& command : All()) {
    if (command.menu != which) continue;
    if (command.group != group) menu->addSeparator();
    group = command.group;
    QAction* action = menu->addAction(tr(command.text), this, [run, &command] { run(command); });
    action->setShortcuts(QKeySequence::listFromString(command.keys));
    actions_[&command] = action;
  }
  connect(menu, &QMenu::aboutToShow, this, &BrowserCommands::MenusBeginning);
  return menu;
}

QMenu* BrowserCommands::MakePopUp(QWidget* parent, const CommandState& state, const Run& run) {
  constexpr int kPerGroup = 10;
  std::vector<const BrowserCommand*> items;
  for (const BrowserCommand& command : All()) {
    if (command.popUp.place != 0) items.push_back(&command);
  }
  std::ranges::sort(items, {}, [](const BrowserCommand* each) { return each->popUp.place; });
  auto* menu = new QMenu(parent);
  menu->setObjectName("PopUpMenu");
  int group = items.front()->popUp.place / kPerGroup;
  for (const BrowserCommand* command : items) {
    const BrowserCommand::PopUp& item = command->popUp;
    if (item.place / kPerGroup != group) menu->addSeparator();
    group = item.place / kPerGroup;
    QAction* action = menu->addAction(tr(item.text) + '\t' + KeyText(item.key));
    action->setEnabled(IsEnabled(item.when, state));
    connect(action, &QAction::triggered, parent, [run, command] { run(*command); });
  }
  return menu;
}

QString BrowserCommands::Keys() {
  QString lines;
  for (const BrowserCommand& command : All()) {
    lines +=
        QString(command.keys).replace("; ", ", ") + '\t' + QString(command.text).remove('&') + '\n';
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
