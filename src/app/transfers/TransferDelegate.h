#pragma once

#include <QRegion>
#include <QStyledItemDelegate>
#include <map>
#include <utility>

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

  /// What of the view is painted next: texts outside it are not worked out.
  void SetRegion(const QRegion& region) { region_ = region; }
  /// Where the bar stands in a row.
  [[nodiscard]] static QRect BarArea(const QRect& row);

 private:
  void PaintTexts(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area,
                  const TransferItem& item) const;
  [[nodiscard]] QString Truncated(const QString& text, const QFont& font, int width) const;

  QRegion region_;
  // Middle truncation measures many times; most rows share a few paths.
  mutable std::map<std::pair<QString, int>, QString> truncated_;
  mutable QFont truncatedIn_;
};

}  // namespace corvane
