#pragma once

#include <QListView>
#include <QTimer>
#include <vector>

#include "app/TransferModel.h"
#include "kit/Message.h"

class QMenu;

namespace corvane {

/// The list of transfers. Progress is read and painted thirty times a second while something runs,
/// only for rows that can be seen. GUI thread.
class TransferListView : public QListView {
  Q_OBJECT

 public:
  explicit TransferListView(QWidget* parent = nullptr);

  [[nodiscard]] TransferModel& Items() const { return *model_; }
  /// Selected rows from the top.
  [[nodiscard]] std::vector<int> SelectedRows() const;
  /// A new menu for the first selected row; the caller owns it.
  [[nodiscard]] QMenu* SetupPopUpMenu();
  [[nodiscard]] bool Ticking() const { return ticker_.isActive(); }

 Q_SIGNALS:
  /// A command for the window.
  void Requested(const corvane::Message& message);
  void SelectionChanged();

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  void Tick();
  void StartOrStopTicking();

  TransferModel* model_;
  QTimer ticker_;
};

}  // namespace corvane
