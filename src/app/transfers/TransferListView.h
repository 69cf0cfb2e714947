#pragma once

#include <QListView>
#include <QTimer>
#include <vector>

#include "app/transfers/TransferModel.h"
#include "kit/Message.h"

class QMenu;

namespace corvane {

class TransferDelegate;

/// The list of transfers. While something runs, the bars of the rows that can be seen move thirty
/// times a second, and their texts follow at every third time. GUI thread.
class TransferListView : public QListView {
  Q_OBJECT

 public:
  explicit TransferListView(QWidget* parent = nullptr);

  [[nodiscard]] TransferModel& Items() const { return *model_; }
  /// Selected rows from the top.
  [[nodiscard]] std::vector<int> SelectedRows() const;
  /// -1 without a selection.
  [[nodiscard]] int FirstSelected() const;
  [[nodiscard]] int LastSelected() const;
  /// A new menu for the first selected row; the caller owns it.
  [[nodiscard]] QMenu* SetupPopUpMenu();
  [[nodiscard]] bool Ticking() const { return ticker_.isActive(); }
  /// Scrolls to the last row, once for all that come in this turn of the event loop.
  void ShowLastSoon();

 Q_SIGNALS:
  /// A command for the window.
  void Requested(const corvane::Message& message);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void Tick();
  void StartOrStopTicking();

  TransferModel* model_;
  TransferDelegate* delegate_;
  QTimer ticker_;
  QTimer scroller_;
  int ticks_ = 0;
};

}  // namespace corvane
