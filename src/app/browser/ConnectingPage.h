#pragma once

#include <QWidget>
#include <vector>

#include "remote/ConnectStep.h"

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace corvane {

/// What a browser window shows while it connects: the steps, those that are done with a tick. GUI
/// thread.
class ConnectingPage : public QWidget {
  Q_OBJECT

 public:
  explicit ConnectingPage(QWidget* parent);

  /// Begins anew, on the way to `host`.
  void Begin(const QString& host);
  void Show(const ConnectStep& step);

 Q_SIGNALS:
  void CancelPressed();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  class Step;

  Step& At(std::size_t number);

  QLabel* heading_;
  QVBoxLayout* lines_;
  QPushButton* cancel_;
  std::vector<Step*> steps_;
};

}  // namespace corvane
