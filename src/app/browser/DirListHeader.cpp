#include "app/browser/DirListHeader.h"

#include <algorithm>

#include "app/browser/DirListModel.h"

namespace corvane {

DirListHeader::DirListHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(false);
  setHighlightSections(false);
  setStretchLastSection(false);
  setMinimumSectionSize(20);
}

void DirListHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
  QRect merged = rect;
  if (section == DirListModel::kIcon) merged.adjust(0, 0, sectionSize(DirListModel::kName), 0);
  if (section == DirListModel::kName) merged.adjust(-sectionSize(DirListModel::kIcon), 0, 0, 0);
  QHeaderView::paintSection(painter, merged, std::max<int>(section, DirListModel::kName));
}

}  // namespace corvane
