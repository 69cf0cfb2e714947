#include "app/DirListHeader.h"

#include "app/DirListModel.h"

namespace corvane {

DirListHeader::DirListHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(false);
  setHighlightSections(false);
  setStretchLastSection(false);
  setMinimumSectionSize(20);
}

void DirListHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
  if (section == DirListModel::kIcon) return;
  QRect merged = rect;
  if (section == DirListModel::kName) merged.adjust(-sectionSize(DirListModel::kIcon), 0, 0, 0);
  QHeaderView::paintSection(painter, merged, section);
}

}  // namespace corvane
