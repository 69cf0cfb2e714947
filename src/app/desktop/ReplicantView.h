#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <functional>

#include "kit/Message.h"

namespace corvane {

/// The program's icon in the tray, with a menu that opens saved connections. GUI thread.
class ReplicantView : public QObject {
  Q_OBJECT

 public:
  /// `launch` gets 'RUNN', which asks for the program, or an 'OPNC' for it.
  explicit ReplicantView(std::function<void(const Message&)> launch);

  /// Shows the icon. A tray that comes later, or comes back, takes it up.
  void Show() { icon_.show(); }
  /// Tells the user beside the icon what could not be done.
  void Warn(const QString& text);

  [[nodiscard]] QMenu& PopUpMenu() { return menu_; }

 Q_SIGNALS:
  /// The user wants the icon gone.
  void Removed();

 private:
  /// The menu as the shortcuts are now.
  void SetupPopUpMenu();
  void SetupShortcuts(QMenu* menu);
  void Open(const Message& open);
  void Clicked(QSystemTrayIcon::ActivationReason reason);

  std::function<void(const Message&)> launch_;
  QMenu menu_;
  QSystemTrayIcon icon_;
};

}  // namespace corvane
