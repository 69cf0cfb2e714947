#pragma once

#include <QWidget>
#include <functional>

#include "kit/Message.h"
#include "sites/Shortcut.h"

class QPushButton;

namespace corvane {

class ConnectionForm;
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

  ShortcutHost& app_;
  Shortcut filled_;  // what the fields say as long as nobody has typed
  Change change_;
  bool asking_ = false;
  ConnectionForm* form_;
  QPushButton* ok_;
};

}  // namespace corvane
