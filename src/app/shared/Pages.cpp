#include "app/shared/Pages.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>

namespace corvane {

QVBoxLayout* LayOutPage(QWidget* page) {
  constexpr int kWidest = 440;
  constexpr int kMargin = 24;
  page->setBackgroundRole(QPalette::Base);
  page->setAutoFillBackground(true);
  auto* middle = new QWidget(page);
  middle->setMaximumWidth(kWidest);
  auto* column = new QVBoxLayout(middle);
  column->setContentsMargins(0, 0, 0, 0);
  auto* across = new QHBoxLayout;
  across->addStretch(1);
  across->addWidget(middle, 1000);
  across->addStretch(1);
  auto* down = new QVBoxLayout(page);
  down->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  down->addStretch();
  down->addLayout(across);
  down->addStretch();
  return column;
}

}  // namespace corvane
