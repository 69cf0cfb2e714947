#pragma once

#include <QWidget>

class QPainter;

namespace corvane {

class TransferItem;

/// The bar of one transfer, in the colours of the style. GUI thread.
class MyStatusBar : public QWidget {
  Q_OBJECT
  Q_PROPERTY(int percent READ Percent)

 public:
  static constexpr int kHeight = 4;

  explicit MyStatusBar(QWidget* parent);

  /// The transfer to show, or null. It must outlive the bar or be taken back before it goes.
  void SetItem(const TransferItem* item);
  /// Draws how far the transfer is now, and tells it to screen readers.
  void Refresh();
  [[nodiscard]] int Percent() const;

  /// Draws such a bar, for the rows of a list, which have no widgets; nothing where the style has
  /// none for the transfer's state.
  static void Draw(QPainter& painter, const QPalette& palette, const QRect& bar,
                   const TransferItem& item, bool selected = false);

  [[nodiscard]] QSize sizeHint() const override { return {100, kHeight}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const TransferItem* item_ = nullptr;
  int told_ = -1;
};

}  // namespace corvane
