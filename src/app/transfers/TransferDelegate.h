#pragma once

#include <QPersistentModelIndex>
#include <QRegion>
#include <QStyledItemDelegate>

#include "app/transfers/TransferRow.h"

namespace corvane {

class TransferItem;

/// Paints one transfer: its sign, name and figures, the bar, how it stands, what can be done with
/// it and, where it is open, its notes.
class TransferDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;

  /// What of the view is painted next: texts outside it are not worked out.
  void SetRegion(const QRegion& region) { region_ = region; }
  /// The action that the pointer is on.
  void SetHovered(const QModelIndex& index, TransferAction action);
  /// Whether the row that the keys are at has a ring.
  void SetRinged(bool ringed) { ringed_ = ringed; }

 private:
  struct Brush;

  void PaintTexts(const Brush& brush) const;
  void PaintNotes(const Brush& brush) const;
  void PaintActions(const Brush& brush, TransferAction hovered) const;

  QRegion region_;
  QPersistentModelIndex hoveredRow_;
  TransferAction hovered_ = TransferAction::None;
  bool ringed_ = false;
};

}  // namespace corvane
