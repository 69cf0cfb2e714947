#pragma once

#include <QTimer>
#include <memory>

#include "app/shared/TransferView.h"
#include "app/transfers/TransferItem.h"

class QLabel;
class QPushButton;
class QShortcut;

namespace corvane {

class ElidedLabel;
class MyStatusBar;

/// File, bar and pace of a transfer, with its direction where the style shows it, and a button that
/// cancels it. Hidden while there is none; after an end it stays for a moment, after a failure
/// until it is cleared. Progress is read thirty times a second while one runs. GUI thread.
class TransferPane : public TransferView {
  Q_OBJECT

 public:
  explicit TransferPane(QWidget* parent);
  ~TransferPane() override;

  void Begin(transferStruct description, TransferListener listener,
             const MakeWorker& make) override;
  void LetGo() override;

  [[nodiscard]] bool Busy() const override { return item_ != nullptr && item_->IsCarried(); }
  [[nodiscard]] bool Running() const override { return item_ != nullptr && item_->Running(); }
  [[nodiscard]] bool Ticking() const { return ticker_.isActive(); }

 private:
  ElidedLabel* MakeLabel(const char* name, const QString& accessible, Qt::TextElideMode elide);
  void Tick();
  void Refresh();
  void ItemSettled(TransferItem* item, TransferEnd end);
  void Ended();
  void ButtonPressed();

  std::unique_ptr<TransferItem> item_;
  QTimer ticker_;
  QTimer hideLater_;
  QLabel* direction_;
  ElidedLabel* file_;
  ElidedLabel* rate_;
  MyStatusBar* bar_;
  QPushButton* button_;
  QShortcut* cancelKey_;
};

}  // namespace corvane
