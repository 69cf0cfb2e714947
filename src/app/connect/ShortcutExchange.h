#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "sites/ShortcutImport.h"

namespace corvane {

class ShortCutWindow;

/// Brings shortcuts from files into the list, and writes the list into a file. Files are read and
/// written behind the windows. GUI thread.
class ShortcutExchange : public QObject {
  Q_OBJECT

 public:
  explicit ShortcutExchange(ShortCutWindow& list);

  /// Asks for a file and shows what it holds, of which the user chooses.
  void Import();
  /// Asks what to write and where.
  void Export();

 private:
  void ReadFile(const std::string& path);
  /// `kept` says whether passwords go to the keyring.
  void ShowImport(ShortcutImport import, bool kept);
  void WarnOfPasswords();
  void AskWhere(bool passwords);
  void FindAndWrite(const std::string& path, bool passwords);
  void WriteFile(const std::string& path, const std::vector<Shortcut>& shortcuts, bool passwords,
                 int missing);

  ShortCutWindow& list_;
};

}  // namespace corvane
