#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <memory>

#include "app/ReplicantView.h"
#include "app/RunningProgram.h"
#include "kit/Message.h"

namespace corvane {

/// The process that keeps the icon in the tray: one per user. It opens no windows of its own but
/// asks the running program to, which it starts when there is none. GUI thread.
class TrayProgram : public QObject {
  Q_OBJECT

 public:
  /// At login the tray may come after its icons.
  static constexpr std::chrono::seconds kTrayPatience{5};

  TrayProgram();

  /// Until the icon is removed or the process told to end. The exit status: 1, with a word on
  /// standard error, when the desktop has no tray.
  [[nodiscard]] int Run();

 private:
  void LookForTray();
  void Launch(const Message& message);

  const QString program_;  // this file, even when another one takes its place
  RunningProgram only_;
  QElapsedTimer waited_;
  QTimer looking_;
  std::unique_ptr<ReplicantView> view_;
};

}  // namespace corvane
