#include "app/shared/SmallView.h"

#include "app/shared/Style.h"

namespace corvane {

SmallView::SmallView(QWidget* parent) : ElidedLabel(parent) {
  setObjectName("smallview");
  setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Expanding);
}

void SmallView::SetText(int count) {
  count_ = count;
  SetText(Style::InForce().Items(count));
}

void SmallView::SetText(const QString& text) {
  setText(text);
  updateGeometry();
}

}  // namespace corvane
