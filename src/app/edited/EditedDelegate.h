#pragma once

#include <QStyledItemDelegate>

namespace corvane {

/// Draws a cell of the edited files: a symbol where there is one, and a text in its colour. GUI
/// thread.
class EditedDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;
};

}  // namespace corvane
