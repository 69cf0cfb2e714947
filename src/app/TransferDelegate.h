#pragma once

#include <QColor>
#include <QStyledItemDelegate>

namespace corvane {

class TransferItem;

/// Paints one transfer: server and rate, target, the file with its byte counts, and the bar.
class TransferDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  static constexpr int kRowHeight = 70;

  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;

  /// Green while it runs, blue when finished, red when failed or cancelled.
  [[nodiscard]] static QColor BarColour(const TransferItem& item);
};

}  // namespace corvane
