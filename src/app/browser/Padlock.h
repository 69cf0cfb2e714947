#pragma once

#include <QObject>
#include <optional>

#include "remote/Protection.h"

namespace corvane {

class MWindow;

/// How the connection of a browser window is protected, as the window shows it: a padlock in the
/// path field, words in the status line, and the details behind both. Nothing is seen while there
/// is no connection. GUI thread.
class Padlock : public QObject {
  Q_OBJECT

 public:
  /// `window` owns this object, and has its view.
  explicit Padlock(MWindow& window);

  /// A connection has been made; it is shown once the server has let the user in.
  void Set(const Protection& protection);
  /// The server has let the user in, or the connection is not there.
  void SetConnected(bool connected);
  /// Whether there is something to show.
  [[nodiscard]] bool IsShown() const { return connected_ && protection_.has_value(); }
  void ShowDetails();

 private:
  void Show();

  MWindow& window_;
  std::optional<Protection> protection_;
  bool connected_ = false;
};

}  // namespace corvane
