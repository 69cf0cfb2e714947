#include "app/SmallView.h"

namespace corvane {

SmallView::SmallView(QWidget* parent) : QLabel(parent) {
  setObjectName("smallview");
  setAccessibleName(tr("Number of entries"));
  setMinimumWidth(64);
  setForegroundRole(QPalette::WindowText);
  SetCount(0);
}

void SmallView::SetCount(int count) {
  count_ = count;
  setText(count == 1 ? tr("%1 Item").arg(count) : tr("%1 Items").arg(count));
}

}  // namespace corvane
