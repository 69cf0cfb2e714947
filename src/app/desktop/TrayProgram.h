#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <memory>

#include "app/desktop/ReplicantView.h"
#include "app/desktop/RunningProgram.h"
#include "kit/Message.h"

namespace corvane {

/// The process that keeps the icon in the tray: one per user. It opens no windows of its own but
/// asks the running program to, which it starts when there is none. GUI thread.
class TrayProgram : public QObject {
  Q_OBJECT

 public:
  /// How long the tray is waited for; at login it may come long after its icons.
  static constexpr std::chrono::seconds kPatience{5};
  static constexpr std::chrono::seconds kLoginPatience{120};

  explicit TrayProgram(std::chrono::seconds patience);

  /// Until the icon is removed or the process told to end. The exit status: 1, with a word on
  /// standard error, when the desktop has no tray.
  [[nodiscard]] int Run();

 private:
  void LookForTray();
  void Launch(const Message& message);

  const std::chrono::milliseconds patience_;
  const QString program_;  // this file, even when another one takes its place
  RunningProgram only_;
  QElapsedTimer waited_;
  QTimer looking_;
  std::unique_ptr<ReplicantView> view_;
};

}  // namespace corvane
