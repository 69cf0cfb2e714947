#pragma once

#include <QColor>
#include <QWidget>

class QPainter;

namespace corvane {

class TransferItem;

/// The bar of one transfer: green while it runs, blue when finished, red when failed or cancelled.
/// GUI thread.
class MyStatusBar : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kHeight = 10;

  explicit MyStatusBar(QWidget* parent);

  /// The transfer to show, or null. It must outlive the bar or be taken back before it goes.
  void SetItem(const TransferItem* item);

  /// Draws such a bar, for the rows of a list, which have no widgets.
  static void Draw(QPainter& painter, const QPalette& palette, const QRect& bar,
                   const TransferItem& item);

  [[nodiscard]] QSize sizeHint() const override { return {100, kHeight + 1}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const TransferItem* item_ = nullptr;
};

}  // namespace corvane
