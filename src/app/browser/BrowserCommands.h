#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string_view>

class QAction;
class QMenu;
class QMenuBar;

namespace corvane {

/// One command of a browser window: a row of the table from which menu bar, pop-up menu and keys
/// are made.
struct BrowserCommand {
  enum class Menu : std::uint8_t { File, Edit, Commands, Windows, Help };
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
    AnyFile,   ///< Selected, and not directories alone
    File,      ///< Selected, and the first such row is a file
    Folder,    ///< Selected, and the first such row is a directory
    One,       ///< Selected, and no second row is
    Copies,    ///< One, and the server can copy files
    Pastable,  ///< Ready, and rows of this server have been cut
    Back,      ///< Ready, and there is a directory to go back to
    Forward,   ///< Ready, and there is one to go forward to
    Shown,     ///< how the connection is protected is known
    Busy,      ///< something is waited for
    Place,     ///< Ready, and a directory is selected or the path field was used last
    Copyable,  ///< a row is selected or the path field was used last
    Focused,   ///< the listing or the path field has been used
  };

  /// Its item in the pop-up menu of a row, and of the place beside the rows.
  struct PopUp {
    int place = 0;  ///< counted from 1, with the group in the tens; 0 where there is none
    const char* key = nullptr;  ///< shown in the classic style; else the command's own is
    const char* text = nullptr;
    When when = When::Always;
    bool beside = false;  ///< stands in the menu of the place beside the rows too
  };

  std::uint32_t code;
  Target target;
  Menu menu;
  int group;  ///< a line stands between groups
  When when;
  const char* keys;  ///< the one shown, and others that hands expect from elsewhere
  const char* text;  ///< in the menu bar
  const char* help;  ///< what it does, for the tip of its items and the manual
  PopUp popUp{};
  const char* where = nullptr;  ///< what the connection enters, where that is the target
};

/// What decides which commands are enabled.
struct CommandState {
  bool ready = false;
  std::int32_t selected = 0;  ///< the type of the first selected row (EntryType); 0 without one
  bool anyFile = false;       ///< a row is selected that is no directory
  int count = 0;              ///< how many rows are selected
  bool pathUsed = false;      ///< the path field had the focus last
  bool anyUsed = false;       ///< the path field or the listing has had it
  bool busy = false;
  bool canCopy = false;   ///< the server copies files
  bool canPaste = false;  ///< rows have been cut that may be moved here
  bool canGoBack = false;
  bool canGoForward = false;
  bool isShown = false;  ///< how the connection is protected
};

/// The commands of one browser window, and its menu bar. GUI thread.
class BrowserCommands : public QObject {
  Q_OBJECT

 public:
  using Run = std::function<void(const BrowserCommand& command)>;

  /// Fills `bar`; `run` is called for what the user chooses. `windows` puts the open windows behind
  /// the fixed items of the "Windows" menu, whose number it gets, each time it opens.
  BrowserCommands(QMenuBar& bar, const Run& run, const std::function<void(QMenu&, int)>& windows);

  /// Every command, in the order of the menus.
  [[nodiscard]] static std::span<const BrowserCommand> All();
  [[nodiscard]] static bool IsEnabled(BrowserCommand::When when, const CommandState& state);
  /// A new pop-up menu for the rows selected or, where none is, for the place beside them; the
  /// caller owns it.
  [[nodiscard]] static QMenu* MakePopUp(QWidget* parent, const CommandState& state, const Run& run);

  /// The action of a command, by its code and what the connection enters.
  [[nodiscard]] QAction* Action(std::uint32_t code, std::string_view where = {}) const;

  void Update(const CommandState& state);
  /// Switches the whole "Commands" menu.
  void SetCommandsEnabled(bool enabled);

 Q_SIGNALS:
  /// A menu is about to open: the state is to be brought up to date.
  void MenusBeginning();

 private:
  QMenu* MakeMenu(QMenuBar& bar, BrowserCommand::Menu which, const QString& title, const Run& run);
  [[nodiscard]] static QString WhyNot(BrowserCommand::When when, const CommandState& state);
  [[nodiscard]] static QString Tip(const BrowserCommand& command, bool enabled,
                                   const CommandState& state);

  std::map<const BrowserCommand*, QAction*> actions_;
  QMenu* commands_;
};

}  // namespace corvane
