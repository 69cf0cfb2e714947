#pragma once

#include <QObject>
#include <string>

#include "kit/Message.h"

namespace corvane {

class MWindow;
class NewDir;
class RenameWin;

/// What a browser window does to the entries of a server: it asks the user first, and then its
/// connection. GUI thread.
class EntryCommands : public QObject {
  Q_OBJECT

 public:
  /// `window` owns this object.
  explicit EntryCommands(MWindow& window);

  /// Deletes what is selected but "." and "..".
  void Delete();
  /// Opens the window that asks for the name of a new directory.
  void ShowNewDir();
  /// Opens the window that asks for the selected entry's new name.
  void ShowRename();
  /// Shows the selected file as text.
  void ViewFile();

 private:
  void CreateDirectory();
  void Rename();
  /// Warns when a transfer runs on this connection.
  [[nodiscard]] bool IsBusy();

  MWindow& window_;
  std::string renaming_;            // the name in the rename window, as the server has it
  std::string renamingIn_;          // the directory of that entry
  NewDir* newDir_ = nullptr;        // from its first use on
  RenameWin* renameWin_ = nullptr;  // from its first use on
};

}  // namespace corvane
