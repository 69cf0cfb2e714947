#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

#include "app/transfers/TransferBar.h"

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
    Row,         ///< there is one
    Going,       ///< the row has not ended
    Ended,       ///< it has
    Pausable,    ///< it runs or waits
    Paused,      ///< it is paused
    Retryable,   ///< it failed or was cancelled
    Again,       ///< it waits to be tried again
    Download,    ///< it is a download
    Fetched,     ///< it is a file that has been downloaded
    Noted,       ///< it has notes
    NotFirst,    ///< there is a row above it
    NotLast,     ///< there is a row below it
    AnyToPause,  ///< some row runs or waits
    AnyPaused,   ///< some row is paused
    AnyFailed,   ///< some row failed or was cancelled
    AnyDone,     ///< some row is done
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
  const char* described = nullptr;  ///< the pop-up menu's text where the style wants another
};

/// What decides which commands are enabled.
struct TransferCommandState {
  const TransferItem* row = nullptr;
  bool first = false;  ///< of the list
  bool last = false;
  TransferChoices any{};
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
  [[nodiscard]] static bool FitsRow(TransferCommand::When when, const TransferCommandState& state);
  QMenu* MakeMenu(QMenuBar& bar, TransferCommand::Menu which, const QString& title, const Run& run);

  std::map<const TransferCommand*, QAction*> actions_;
};

}  // namespace corvane
