#pragma once

#include <QStyledItemDelegate>

class QLineEdit;

namespace corvane {

class DirListModel;
class MWListItem;

/// Draws the rows of a listing, and is the editor of a name. GUI thread.
class RowDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  /// Where a name begins in its cell, behind the symbol.
  static constexpr int kNameX = 36;

  RowDelegate(const DirListModel& rows, QObject* parent);

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;
  [[nodiscard]] QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;

  /// Selects what of a name in its editor is commonly replaced: all but a file's ending.
  static void SelectStem(QLineEdit& editor, const MWListItem& item);

 Q_SIGNALS:
  /// A name was typed and confirmed in the cell.
  void Entered(const QString& text) const;

 private:
  const DirListModel& rows_;
};

}  // namespace corvane
