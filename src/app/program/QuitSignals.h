#pragma once

#include <QObject>
#include <functional>

namespace corvane {

/// Lets the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) end it in an orderly way.
/// One object per process, on the GUI thread.
class QuitSignals : public QObject {
 public:
  /// `quit` runs on the GUI thread. A second signal ends the process at once.
  explicit QuitSignals(std::function<void()> quit);
  ~QuitSignals() override;
};

}  // namespace corvane
