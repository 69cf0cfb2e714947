#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "kit/Message.h"
#include "sites/Shortcut.h"

class QPushButton;

namespace corvane {

class ConnectionForm;
class HintLabel;
struct ShortcutHost;

/// Edits one saved connection: a new one, which is stored at once, or one of the shortcut list,
/// which takes the change over. Deletes itself when closed. GUI thread.
class ShortCutEditWindow : public QWidget {
  Q_OBJECT

 public:
  /// Takes a changed connection over; false when it has no place any more.
  using Change = std::function<bool(const Shortcut&)>;

  explicit ShortCutEditWindow(ShortcutHost& app);

  /// Edits `record`: a connection that `change` takes back, or a new one without.
  void Edit(const Shortcut& record, Change change);
  /// Whether the user has typed something or is being asked something.
  [[nodiscard]] bool Busy() const;
  /// Goes to where it belongs to a window that opens it.
  void PlaceBeside(const QWidget& opener);

  void MessageReceived(const Message& message);

 private:
  void MakeViews();
  [[nodiscard]] Shortcut Entered() const;
  void Warn(const QString& text, const QString& detail = {});
  void Save();
  void Store(const Shortcut& entered);
  void Add(const Shortcut& entered);
  /// Stores one whose password is where it belongs.
  void AddKept(const Shortcut& entered);
  /// Says so where the password goes to no keyring.
  void ShowWhereKept();

  ShortcutHost& app_;
  Shortcut filled_;     // what the fields say as long as nobody has typed
  std::string folder_;  // of what is edited
  Change change_;
  bool asking_ = false;
  ConnectionForm* form_;
  HintLabel* inFile_;
  QPushButton* ok_;
  std::optional<bool> inKeyring_;  // whether passwords go there, once that is known
};

}  // namespace corvane
