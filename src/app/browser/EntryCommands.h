#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "kit/Message.h"
#include "workers/WalkUi.h"

namespace corvane {

class MWindow;
class NewDir;
class RenameWin;

/// What a browser window does to the entries of a server: it asks the user first, and then its
/// connection. GUI thread. Names and paths of the server are raw bytes.
class EntryCommands : public QObject {
  Q_OBJECT

 public:
  /// `window` owns this object and has its view already.
  explicit EntryCommands(MWindow& window);

  /// Deletes what is selected but "." and "..".
  void Delete();
  /// Deletes entries wherever they stand, and asks over `over`.
  void Delete(QWidget* over, const std::vector<FoundEntry>& entries);
  /// Asks for the name of a new directory: in the listing, or in a window.
  void ShowNewDir();
  /// Asks for the selected entry's new name, likewise.
  void ShowRename();
  /// Makes a copy of the selected file beside it, under a name that is free.
  void Duplicate();
  /// Remembers what is selected, to be moved to where it is pasted.
  void Cut();
  /// Moves what was cut into the directory shown.
  void Paste();
  /// Moves entries of the directory shown into `to`.
  void Move(const std::vector<std::string>& names, const std::string& to);
  /// Shows the selected file as text.
  void ViewFile();

 private:
  /// The site's.
  [[nodiscard]] const std::string& Encoding() const;
  void CreateDirectory(const QString& name);
  void RenameEntry(const std::string& from, const QString& to);
  void Rename(const std::string& directory, const std::string& from, const std::string& to);
  void AskToReplace(const Message& request, const std::string& to, bool elsewhere);
  void SendMove(const std::string& from, const std::vector<std::string>& names,
                const std::string& to);
  void AskForNewDir();
  void AskForName(int row);
  /// Warns when a transfer runs on this connection.
  [[nodiscard]] bool IsBusy();
  /// What the title of a question says.
  [[nodiscard]] QString Subject(const QString& verb) const;

  MWindow& window_;
  std::string renaming_;            // the name in the rename window, as the server has it
  std::string renamingIn_;          // the directory of that entry
  NewDir* newDir_ = nullptr;        // from its first use on
  RenameWin* renameWin_ = nullptr;  // from its first use on
};

}  // namespace corvane
