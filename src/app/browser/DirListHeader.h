#pragma once

#include <QHeaderView>

namespace corvane {

/// The listing's column titles; the picture column's title is one with the next column's.
class DirListHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit DirListHeader(QWidget* parent);

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;
};

}  // namespace corvane
