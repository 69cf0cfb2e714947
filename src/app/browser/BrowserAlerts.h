#pragma once

#include <QObject>
#include <QString>

#include "kit/Message.h"

namespace corvane {

class MWindow;

/// What a browser window tells and asks on behalf of its connection. GUI thread.
class BrowserAlerts : public QObject {
  Q_OBJECT

 public:
  /// `window` owns this object.
  explicit BrowserAlerts(MWindow& window);

  /// Shows a warning; while several wait for an answer already, the log gets it.
  void Warn(const QString& text, const QString& title);
  /// 'GERR'.
  void Warned(const Message& message);
  /// Asks whether to close the window although something runs.
  void AskToClose(const QString& running);

 private:
  MWindow& window_;
  int openWarnings_ = 0;
  bool asking_ = false;  // whether to close
};

}  // namespace corvane
