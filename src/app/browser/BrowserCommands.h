#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

class QAction;
class QMenu;
class QMenuBar;

namespace corvane {

/// One command of a browser window: a row of the table from which menu bar, pop-up menu and keys
/// are made.
struct BrowserCommand {
  enum class Menu : std::uint8_t { File, Edit, Commands, Windows };
  enum class Target : std::uint8_t {
    Window,      ///< MWindow::MessageReceived gets a message of the code
    Connection,  ///< the connection enters `where`
    Program,     ///< the program gets a message of the code
  };
  /// What has to be the case for it to be enabled.
  enum class When : std::uint8_t {
    Always,
    Ready,     ///< the connection takes requests
    Selected,  ///< Ready, and a row is selected
    NoFolder,  ///< Selected, and the first such row is no directory
    File,      ///< Selected, and the first such row is a file
    Place,     ///< Ready, and a directory is selected or the path field was used last
    Copyable,  ///< a row is selected or the path field was used last
    Focused,   ///< the listing or the path field has been used
  };

  /// Its item in the pop-up menu of a row.
  struct PopUp {
    int place = 0;  ///< counted from 1, with the group in the tens; 0 where there is none
    const char* key = nullptr;  ///< shown only
    const char* text = nullptr;
    When when = When::Always;
  };

  std::uint32_t code;
  Target target;
  Menu menu;
  int group;  ///< a line stands between groups
  When when;
  const char* keys;  ///< the one shown, and others that hands expect from elsewhere
  const char* text;  ///< in the menu bar
  PopUp popUp{};
  const char* where = nullptr;  ///< what the connection enters, where that is the target
};

/// What decides which commands are enabled.
struct CommandState {
  bool ready = false;
  std::int32_t selected = 0;  ///< the type of the first selected row (EntryType); 0 without one
  bool pathUsed = false;      ///< the path field had the focus last
  bool anyUsed = false;       ///< the path field or the listing has had it
};

/// The commands of one browser window, and its menu bar. GUI thread.
class BrowserCommands : public QObject {
  Q_OBJECT

 public:
  using Run = std::function<void(const BrowserCommand& command)>;

  /// Fills `bar`; `run` is called for what the user chooses. `windows` puts the open windows behind
  /// the fixed items of the "Windows" menu, whose number it gets, each time it opens.
  BrowserCommands(QMenuBar& bar, Run run, const std::function<void(QMenu&, int)>& windows);

  /// Every command, in the order of the menus.
  [[nodiscard]] static std::span<const BrowserCommand> All();
  [[nodiscard]] static bool IsEnabled(BrowserCommand::When when, const CommandState& state);
  /// A new pop-up menu for `state`; the caller owns it.
  [[nodiscard]] static QMenu* MakePopUp(QWidget* parent, const CommandState& state, const Run& run);
  /// The keys and what they do, a line for each command: "Ctrl+T, Delete\tDelete File".
  [[nodiscard]] static QString Keys();

  void Update(const CommandState& state);
  /// Switches the whole "Commands" menu.
  void SetCommandsEnabled(bool enabled);

 Q_SIGNALS:
  /// A menu is about to open: the state is to be brought up to date.
  void MenusBeginning();

 private:
  QMenu* MakeMenu(QMenuBar& bar, BrowserCommand::Menu which, const QString& title, const Run& run);

  std::map<const BrowserCommand*, QAction*> actions_;
  QMenu* commands_;
};

}  // namespace corvane
