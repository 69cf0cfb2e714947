#include "app/browser/FilterLine.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>

#include "app/browser/DirListView.h"
#include "app/shared/ElidedLabel.h"
#include "app/shared/IconButton.h"
#include "app/shared/Symbols.h"

namespace corvane {

FilterLine::FilterLine(DirListView& view, QWidget* parent)
    : QWidget(parent), view_(view), field_(new QLineEdit(this)) {
  constexpr int kFieldWidth = 280;
  setObjectName("FilterLine");
  field_->setObjectName("Filter");
  field_->setAccessibleName(tr("Filter"));
  field_->setPlaceholderText(tr("Part of a name"));
  field_->setFixedWidth(kFieldWidth);
  QAction* symbol = field_->addAction(Symbol("search"), QLineEdit::LeadingPosition);
  symbol->setText(tr("Filter"));
  connect(symbol, &QAction::triggered, field_, qOverload<>(&QWidget::setFocus));
  field_->installEventFilter(this);
  auto* count = new ElidedLabel(this);
  count->setObjectName("FilterCount");
  count->SetSecondary(true);
  count_ = count;
  auto* close = new IconButton("close", tr("Close the filter"), this);
  close->setObjectName("CloseFilter");
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 8, 8, 8);
  layout->setSpacing(12);
  layout->addWidget(field_);
  layout->addWidget(count_, 1);
  layout->addWidget(close);
  setTabOrder(close, &view_);
  connect(field_, &QLineEdit::textChanged, &view_, &DirListView::SetFilter);
  connect(close, &QToolButton::clicked, this, &FilterLine::Close);
  connect(&view_, &DirListView::CountChanged, this, &FilterLine::ShowCount);
  connect(&view_, &DirListView::FilterWanted, this, &FilterLine::Open);
  connect(&view_, &DirListView::Escaped, this, &FilterLine::Close);
  hide();
}

void FilterLine::Open() {
  show();
  ShowCount();
  field_->setFocus();
  field_->selectAll();
  Q_EMIT OpenChanged(true);
}

void FilterLine::Close() {
  if (isHidden()) return;
  const bool focused = isAncestorOf(window()->focusWidget());
  if (focused) view_.setFocus();
  field_->clear();
  hide();
  Q_EMIT OpenChanged(false);
}

void FilterLine::ShowCount() {
  if (isHidden()) return;
  const DirListModel& rows = view_.Rows();
  const QString text =
      (rows.Count() == 1 ? tr("%1 of 1 item") : tr("%1 of %n items", "", rows.Count()))
          .arg(rows.ShownCount());
  count_->setText(text);
  count_->setAccessibleName(text);
}

// From the field the keys lead on into the listing.
bool FilterLine::eventFilter(QObject* /*field*/, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Escape: Close(); return true;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      view_.setFocus();
      view_.SelectRow(std::max(view_.FirstSelected(), 0));
      return true;
    default: return false;
  }
}

}  // namespace corvane
