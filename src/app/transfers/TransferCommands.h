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
class QWidget;

namespace corvane {

class TransferItem;

/// One command of the transfer window: a row of the table from which menu bar, pop-up menu and keys
/// are made.
struct TransferCommand {
  enum class Menu : std::uint8_t { File, Windows, None };
  /// What has to be the case for it to be enabled. "The row" is the last selected one in the menu
  /// bar, and the first in the pop-up menu.
  enum class When : std::uint8_t {
    Always,
    Running,    ///< the row's transfer runs
    Ended,      ///< it does not
    Retryable,  ///< the row's transfer can be begun again
    Download,   ///< the row is a download
    Noted,      ///< the row has notes
    AnyFailed,  ///< some transfer can be begun again
    AnyDone,    ///< some transfer has finished
  };

  std::uint32_t code;  ///< what DownLoadWin::MessageReceived gets
  Menu menu;
  int group;  ///< a line stands between groups
  When when;
  const char* keys;
  const char* text;
  const char* help;  ///< what it does, for the tip of its items and the manual
  int popUp = 0;  ///< its group in the pop-up menu of a row, counted from 1; 0 where it has no item
  const char* popUpText = nullptr;  ///< where it is not that of the menu bar
};

/// What decides which commands are enabled.
struct TransferCommandState {
  const TransferItem* row = nullptr;
  bool anyFailed = false;
  bool anyDone = false;
};

/// The commands of the transfer window and its menu bar. GUI thread.
class TransferCommands : public QObject {
  Q_OBJECT

 public:
  using Run = std::function<void(std::uint32_t code)>;

  /// Fills `bar`. Keys work in all of its window, those without a menu in `list` alone. `windows`
  /// puts the open windows behind the fixed items of "Windows", whose number it gets.
  TransferCommands(QMenuBar& bar, QWidget* list, const Run& run,
                   const std::function<void(QMenu&, int)>& windows);

  /// Every command, in the order of the menus.
  [[nodiscard]] static std::span<const TransferCommand> All();
  [[nodiscard]] static bool IsEnabled(TransferCommand::When when,
                                      const TransferCommandState& state);
  /// A new pop-up menu for the row of `state`; the caller owns it.
  [[nodiscard]] static QMenu* MakePopUp(QWidget* parent, const TransferCommandState& state,
                                        const Run& run);

  /// Commands of a row keep their state where there is no row.
  void Update(const TransferCommandState& state);

 Q_SIGNALS:
  /// A menu is about to open: the state is to be brought up to date.
  void MenusBeginning();

 private:
  QMenu* MakeMenu(QMenuBar& bar, TransferCommand::Menu which, const QString& title, const Run& run);

  std::map<const TransferCommand*, QAction*> actions_;
};

}  // namespace corvane
