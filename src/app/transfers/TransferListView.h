#pragma once

#include <QListView>
#include <QTimer>
#include <vector>

#include "app/transfers/TransferModel.h"
#include "app/transfers/TransferRow.h"

class QMenu;

namespace corvane {

class TransferDelegate;

/// The list of transfers. While something runs, the bars of the rows that can be seen move thirty
/// times a second, and their texts follow at every third time; while it is hidden, only paces are
/// measured. GUI thread.
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
  /// A command for the window, by its code.
  void Requested(std::uint32_t code);
  /// A part of a row was clicked.
  void Acted(int row, corvane::TransferAction action);
  /// The texts of what runs have moved on.
  void Moved();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  void Tick();
  void SetRinged(bool ringed);
  void StartOrStopTicking();
  void Announce(const QModelIndex& index);
  void Hover(const QPoint& point);
  [[nodiscard]] TransferAction ActionAt(const QPoint& point) const;

  TransferModel* model_;
  TransferDelegate* delegate_;
  QTimer ticker_;
  QTimer scroller_;
  int ticks_ = 0;
  QPersistentModelIndex pressedRow_;
  TransferAction pressed_ = TransferAction::None;
};

}  // namespace corvane
