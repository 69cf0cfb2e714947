#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "app/transfers/TransferItem.h"

class QLabel;
class QPushButton;
class QShortcut;

namespace corvane {

class MyStatusBar;

/// What a browser window shows of a transfer on its own connection: direction, file, rate, bar, and
/// a button that cancels it. Hidden while there is none; after an end it stays for a moment, after
/// a failure until it is cleared. Progress is read thirty times a second while one runs. GUI
/// thread.
class TransferPane : public QWidget {
  Q_OBJECT

 public:
  explicit TransferPane(QWidget* parent);
  ~TransferPane() override;

  /// Takes a transfer over and starts it; not while Busy().
  void Begin(std::unique_ptr<TransferItem> item, const TransferItem::MakeWorker& make);
  /// Stops the worker and hears no more of it.
  void LetGo();

  /// From Begin until the worker has said how it ended.
  [[nodiscard]] bool Busy() const { return item_ != nullptr && !item_->IsSettled(); }
  [[nodiscard]] bool Running() const { return item_ != nullptr && item_->Running(); }
  [[nodiscard]] bool Ticking() const { return ticker_.isActive(); }

 Q_SIGNALS:
  /// The worker has said how it ended and uses the connection no more.
  void Settled(const corvane::TransferItem& item);

 private:
  QLabel* MakeLabel(const char* name, const QString& accessible);
  void Tick();
  void Refresh();
  void Ended();
  void ButtonPressed();

  std::unique_ptr<TransferItem> item_;
  QTimer ticker_;
  QTimer hideLater_;
  QLabel* direction_;
  QLabel* file_;
  QLabel* rate_;
  MyStatusBar* bar_;
  QPushButton* button_;
  QShortcut* cancelKey_;
};

}  // namespace corvane
