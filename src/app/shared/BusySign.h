#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QWidget>

namespace corvane {

/// A ring that turns once a second while something is waited for. Takes no time while it is hidden
/// or at rest. GUI thread.
class BusySign : public QWidget {
  Q_OBJECT

 public:
  explicit BusySign(QWidget* parent);

  /// Turns and is seen, or rests and is not; its place stays.
  void SetBusy(bool busy);
  [[nodiscard]] bool IsBusy() const { return busy_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void Turn();

  QBasicTimer timer_;
  QElapsedTimer clock_;
  bool busy_ = false;
};

}  // namespace corvane
