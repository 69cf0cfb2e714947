#include "app/browser/BrowserCommands.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "app/shared/Style.h"
#include "kit/Message.h"
#include "remote/fileStruct.h"

namespace corvane {
namespace {

using Menu = BrowserCommand::Menu;
using When = BrowserCommand::When;

constexpr auto kWindow = BrowserCommand::Target::Window;
constexpr auto kServer = BrowserCommand::Target::Connection;
constexpr auto kProgram = BrowserCommand::Target::Program;

/// The first of the keys, as it is written in a menu.
QString KeyText(const char* keys) {
  return QKeySequence::listFromString(keys).value(0).toString(QKeySequence::NativeText);
}

}  // namespace

// Beside "Parent Dir" the classic pop-up menu shows a key that is not its own.
std::span<const BrowserCommand> BrowserCommands::All() {
  // clang-format off
  static constexpr auto kCommands = std::to_array<BrowserCommand>({
      {"NWST"_what, kWindow, Menu::File, 0, When::Always, "Ctrl+S", QT_TR_NOOP("&Add Shortcut"),
       QT_TR_NOOP("Saves the connection as a shortcut"),
       {61, "Ctrl+S", QT_TR_NOOP("Add Shortcut"), When::Always, true}},
      {"SHMN"_what, kProgram, Menu::File, 0, When::Always, "Ctrl+N", QT_TR_NOOP("&New Connection"),
       QT_TR_NOOP("Brings the connection window forward")},
      {"OPNW"_what, kWindow, Menu::File, 0, When::Folder, "Ctrl+Return", QT_TR_NOOP("&Open in New Window"),
       QT_TR_NOOP("Opens the selected directory in a window of its own"),
       {12, "Ctrl+Return", QT_TR_NOOP("Open in New Window"), When::Folder}},
      {"_QRQ"_what, kWindow, Menu::File, 0, When::Always, "Ctrl+W", QT_TR_NOOP("&Close"),
       QT_TR_NOOP("Closes this window")},
      {"COPY"_what, kWindow, Menu::Edit, 0, When::Copyable, "Ctrl+C", QT_TR_NOOP("&Copy"),
       QT_TR_NOOP("Copies the addresses of what is selected"),
       {21, "Ctrl+C", QT_TR_NOOP("Copy URL"), When::Always}},
      {"CUTT"_what, kWindow, Menu::Edit, 0, When::Selected, "Shift+Delete", QT_TR_NOOP("Cu&t"),
       QT_TR_NOOP("Takes what is selected along, to be moved by Paste"),
       {22, "Shift+Delete", QT_TR_NOOP("Cut"), When::Selected}},
      {"PSTE"_what, kWindow, Menu::Edit, 0, When::Pastable, "Ctrl+V; Shift+Insert", QT_TR_NOOP("&Paste"),
       QT_TR_NOOP("Moves what was cut into this directory"),
       {23, "Ctrl+V", QT_TR_NOOP("Paste"), When::Pastable, true}},
      {"SALL"_what, kWindow, Menu::Edit, 1, When::Focused, "Ctrl+A", QT_TR_NOOP("Select &All"),
       QT_TR_NOOP("Selects everything that is listed")},
      {"FLTR"_what, kWindow, Menu::Edit, 1, When::Ready, "Ctrl+I", QT_TR_NOOP("&Filter"),
       QT_TR_NOOP("Shows only entries whose names match")},
      {"DWLD"_what, kWindow, Menu::Commands, 0, When::Selected, "Ctrl+D", QT_TR_NOOP("&Download File"),
       QT_TR_NOOP("Downloads what is selected"),
       {41, "Ctrl+D", QT_TR_NOOP("Download"), When::Ready}},
      {"UPLD"_what, kWindow, Menu::Commands, 0, When::Ready, "Ctrl+U", QT_TR_NOOP("&Upload File"),
       QT_TR_NOOP("Uploads files and folders into this directory"),
       {42, "Ctrl+U", QT_TR_NOOP("Upload"), When::Ready, true}},
      {"DELE"_what, kWindow, Menu::Commands, 0, When::Selected, "Ctrl+T; Delete", QT_TR_NOOP("De&lete File"),
       QT_TR_NOOP("Deletes what is selected, after a question"),
       {44, "Ctrl+T", QT_TR_NOOP("Delete"), When::Ready}},
      {"RNFW"_what, kWindow, Menu::Commands, 0, When::Selected, "Ctrl+E; F2", QT_TR_NOOP("R&ename File/Dir"),
       QT_TR_NOOP("Renames the selected entry"),
       {43, "Ctrl+E", QT_TR_NOOP("Rename"), When::Ready}},
      {"DUPL"_what, kWindow, Menu::Commands, 0, When::Copies, "Ctrl+Shift+D", QT_TR_NOOP("Dupl&icate"),
       QT_TR_NOOP("Has the server copy the selected file"),
       {46, "Ctrl+Shift+D", QT_TR_NOOP("Duplicate"), When::Copies}},
      {"BACK"_what, kWindow, Menu::Commands, 1, When::Back, "Alt+Left", QT_TR_NOOP("&Back"),
       QT_TR_NOOP("Goes to the directory shown before")},
      {"FRWD"_what, kWindow, Menu::Commands, 1, When::Forward, "Alt+Right", QT_TR_NOOP("Forw&ard"),
       QT_TR_NOOP("Goes back to the directory left with Back")},
      {"PCHN"_what, kServer, Menu::Commands, 1, When::Ready, "Ctrl+Up; Alt+Up; Backspace", QT_TR_NOOP("&Parent Dir"),
       QT_TR_NOOP("Goes to the parent directory"),
       {31, "Ctrl+E", QT_TR_NOOP("Parent Dir"), When::Ready, true}, ".."},
      {"HOME"_what, kWindow, Menu::Commands, 1, When::Ready, "Alt+Home", QT_TR_NOOP("&Home"),
       QT_TR_NOOP("Goes to your home directory on the server")},
      {"PCHN"_what, kWindow, Menu::Commands, 1, When::Place, "Ctrl+Down; Alt+Down", QT_TR_NOOP("&Change Dir"),
       QT_TR_NOOP("Goes into the selected directory, or to the path in the field")},
      {"MKDR"_what, kWindow, Menu::Commands, 1, When::Ready, "Ctrl+M; Ctrl+Shift+N", QT_TR_NOOP("Create Di&r"),
       QT_TR_NOOP("Creates a directory here"),
       {45, "Ctrl+M", QT_TR_NOOP("Create Dir"), When::Ready, true}},
      {"PCHN"_what, kServer, Menu::Commands, 1, When::Ready, "Ctrl+.; F5", QT_TR_NOOP("Re&fresh Listing"),
       QT_TR_NOOP("Fetches the listing anew"),
       {32, "Ctrl+.", QT_TR_NOOP("Refresh Listing"), When::Ready, true}, "."},
      {"STOP"_what, kWindow, Menu::Commands, 1, When::Busy, "Escape", QT_TR_NOOP("S&top"),
       QT_TR_NOOP("Stops what the window waits for")},
      {"VWDR"_what, kWindow, Menu::Commands, 1, When::Ready, "Ctrl+F", QT_TR_NOOP("View Dir Li&sting"),
       QT_TR_NOOP("Shows the listing as the server sent it"),
       {33, "Ctrl+F", QT_TR_NOOP("View Dir Listing"), When::Ready, true}},
      {"OPEN"_what, kWindow, Menu::Commands, 2, When::AnyFile, "Ctrl+O", QT_TR_NOOP("&Open"),
       QT_TR_NOOP("Opens the selected files in their programs; what is saved there is sent back"),
       {14, "Ctrl+O", QT_TR_NOOP("Open File"), When::AnyFile}},
      {"EDIT"_what, kWindow, Menu::Commands, 2, When::AnyFile, "F4", QT_TR_NOOP("Edit Te&xt"),
       QT_TR_NOOP("Opens the selected files in the text editor; what is saved there is sent back"),
       {15, "F4", QT_TR_NOOP("Edit"), When::AnyFile}},
      {"VWFL"_what, kWindow, Menu::Commands, 2, When::NoFolder, "Ctrl+L", QT_TR_NOOP("&View File"),
       QT_TR_NOOP("Shows the selected file as text"),
       {13, "Ctrl+L", QT_TR_NOOP("View File"), When::File}},
      {"PROP"_what, kWindow, Menu::Commands, 2, When::Selected, "Alt+Return", QT_TR_NOOP("Sho&w Properties…"),
       QT_TR_NOOP("Shows what is selected in detail, and changes its permissions"),
       {71, "Alt+Return", QT_TR_NOOP("Properties…"), When::Selected}},
      {"FIND"_what, kWindow, Menu::Commands, 2, When::Ready, "Ctrl+Shift+F", QT_TR_NOOP("Fi&nd…"),
       QT_TR_NOOP("Finds files below this directory"),
       {34, "Ctrl+Shift+F", QT_TR_NOOP("Find…"), When::Ready, true}},
      {"SHLG"_what, kWindow, Menu::Windows, 0, When::Always, "Ctrl+K", QT_TR_NOOP("&Log Window"),
       QT_TR_NOOP("Shows what was said between Corvane and the server")},
      {"SECU"_what, kWindow, Menu::Windows, 0, When::Shown, "Ctrl+Shift+E", QT_TR_NOOP("Connection &Security…"),
       QT_TR_NOOP("Shows how the connection is protected")},
      {"SHLG"_what, kProgram, Menu::Windows, 0, When::Always, "Ctrl+X", QT_TR_NOOP("&Transfer List"),
       QT_TR_NOOP("Brings the transfer window forward")},
      {"SHED"_what, kProgram, Menu::Windows, 0, When::Always, "Ctrl+J", QT_TR_NOOP("&Edited Files"),
       QT_TR_NOOP("Brings the window of edited files forward")},
      {"HELP"_what, kProgram, Menu::Help, 0, When::Always, "F1", QT_TR_NOOP("&Manual"),
       QT_TR_NOOP("Opens the manual")},
      {"DIAG"_what, kWindow, Menu::Help, 0, When::Always, "Ctrl+F1", QT_TR_NOOP("&What Is Wrong?"),
       QT_TR_NOOP("Looks at the connection step by step")},
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
    case When::AnyFile: return state.ready && state.anyFile;
    case When::File: return state.ready && state.selected == kFile;
    case When::Folder: return state.ready && directory;
    case When::One: return state.ready && state.count == 1;
    case When::Copies: return state.ready && state.canCopy && state.count == 1 && !directory;
    case When::Pastable: return state.ready && state.canPaste;
    case When::Back: return state.ready && state.canGoBack;
    case When::Forward: return state.ready && state.canGoForward;
    case When::Shown: return state.isShown;
    case When::Busy: return state.busy;
    case When::Place: return state.ready && (state.pathUsed || directory);
    case When::Copyable: return selected || state.pathUsed;
    case When::Focused: return state.anyUsed;
  }
  return false;
}

BrowserCommands::BrowserCommands(QMenuBar& bar, const Run& run,
                                 const std::function<void(QMenu&, int)>& windows) {
  MakeMenu(bar, Menu::File, tr("&File"), run);
  MakeMenu(bar, Menu::Edit, tr("&Edit"), run);
  commands_ = MakeMenu(bar, Menu::Commands, tr("&Commands"), run);
  QMenu* menu = MakeMenu(bar, Menu::Windows, tr("&Windows"), run);
  // The key is shown here too but belongs to "New Connection": a key of two items works for none.
  const auto connection = std::ranges::find(All(), "SHMN"_what, &BrowserCommand::code);
  menu->addAction(tr("&Control Window") + '\t' + KeyText(connection->keys), this,
                  [run, &command = *connection] { run(command); });
  const auto fixed = static_cast<int>(menu->actions().size());
  connect(menu, &QMenu::aboutToShow, this, [menu, fixed, windows] { windows(*menu, fixed); });
  MakeMenu(bar, Menu::Help, tr("&Help"), run);
}

QMenu* BrowserCommands::MakeMenu(QMenuBar& bar, Menu which, const QString& title, const Run& run) {
  QMenu* menu = bar.addMenu(title);
  menu->setToolTipsVisible(true);
  int group = 0;
  for (const BrowserCommand& command : All()) {
    if (command.menu != which) continue;
    if (command.group != group) menu->addSeparator();
    group = command.group;
    QAction* action = menu->addAction(tr(command.text), this, [run, &command] { run(command); });
    action->setShortcuts(QKeySequence::listFromString(command.keys));
    action->setToolTip(tr(command.help));
    actions_[&command] = action;
  }
  connect(menu, &QMenu::aboutToShow, this, &BrowserCommands::MenusBeginning);
  return menu;
}

QMenu* BrowserCommands::MakePopUp(QWidget* parent, const CommandState& state, const Run& run) {
  constexpr int kPerGroup = 10;
  std::vector<const BrowserCommand*> items;
  for (const BrowserCommand& command : All()) {
    const BrowserCommand::PopUp& item = command.popUp;
    if (item.place != 0 && (state.selected != 0 || item.beside)) items.push_back(&command);
  }
  std::ranges::sort(items, {}, [](const BrowserCommand* each) { return each->popUp.place; });
  auto* menu = new QMenu(parent);
  menu->setObjectName("PopUpMenu");
  menu->setToolTipsVisible(true);
  int group = items.front()->popUp.place / kPerGroup;
  for (const BrowserCommand* command : items) {
    const BrowserCommand::PopUp& item = command->popUp;
    if (item.place / kPerGroup != group) menu->addSeparator();
    group = item.place / kPerGroup;
    const char* key = Style::InForce().PopUpKey(command->keys, item.key);
    QAction* action = menu->addAction(tr(item.text) + '\t' + KeyText(key));
    const bool enabled = IsEnabled(item.when, state);
    action->setToolTip(Tip(*command, enabled, state));
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, parent, [run, command] { run(*command); });
  }
  return menu;
}

void BrowserCommands::Update(const CommandState& state) {
  for (const auto& [command, action] : actions_) {
    const bool enabled = IsEnabled(command->when, state);
    action->setStatusTip(enabled ? QString() : WhyNot(command->when, state));
    action->setToolTip(Tip(*command, enabled, state));
    action->setEnabled(enabled);
  }
}

// What it does, or why it cannot now.
QString BrowserCommands::Tip(const BrowserCommand& command, bool enabled,
                             const CommandState& state) {
  const QString why = enabled ? QString() : WhyNot(command.when, state);
  return why.isEmpty() ? tr(command.help) : why;
}

QAction* BrowserCommands::Action(std::uint32_t code, std::string_view where) const {
  for (const auto& [command, action] : actions_) {
    const std::string_view enters = command->where == nullptr ? "" : command->where;
    if (command->code == code && enters == where) return action;
  }
  return nullptr;
}

QString BrowserCommands::WhyNot(When when, const CommandState& state) {
  if (when == When::Shown) return tr("There is no connection.");
  if (!state.ready && when != When::Busy) return tr("The connection is busy or not there.");
  switch (when) {
    case When::Selected:
    case When::NoFolder:
    case When::AnyFile:
    case When::File: return tr("Select something in the listing first.");
    case When::Folder: return tr("Select a directory first.");
    case When::One:
    case When::Copies:
      return state.canCopy ? tr("Select one file first.") : tr("This server cannot copy files.");
    case When::Pastable: return tr("Nothing of this server has been cut.");
    case When::Back: return tr("There is no directory to go back to.");
    case When::Forward: return tr("There is no directory to go forward to.");
    default: return {};
  }
}

void BrowserCommands::SetCommandsEnabled(bool enabled) {
  commands_->setEnabled(enabled);
}

}  // namespace corvane
