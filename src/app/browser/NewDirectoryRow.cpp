#include "app/browser/NewDirectoryRow.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <utility>

#include "app/browser/RowDelegate.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Symbols.h"

namespace corvane {

NewDirectoryRow::NewDirectoryRow(QWidget* parent) : QWidget(parent), name_(new QLineEdit(this)) {
  setObjectName("NewDirectoryRow");
  name_->setObjectName("NewDirectoryName");
  name_->setAccessibleName(tr("Name of the new directory"));
  name_->installEventFilter(this);
  setFocusProxy(name_);
  hide();
}

void NewDirectoryRow::Open(const QString& suggestion) {
  open_ = true;
  name_->setText(suggestion);
  name_->selectAll();
  show();
  name_->setFocus();
}

QSize NewDirectoryRow::sizeHint() const {
  return {0, LookStyle::kRowHeight};
}

void NewDirectoryRow::End(bool confirmed, bool byKey) {
  if (!std::exchange(open_, false)) return;
  const QString name = name_->text();
  Q_EMIT Closed(byKey);
  if (confirmed && !name.isEmpty()) Q_EMIT Entered(name);
}

bool NewDirectoryRow::eventFilter(QObject* /*field*/, QEvent* event) {
  if (event->type() == QEvent::FocusOut) {
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    const bool stays = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason;
    if (!stays) End(true, false);
    return false;
  }
  if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
  if (!enter && key != Qt::Key_Escape) return false;
  event->accept();
  if (event->type() == QEvent::KeyPress) End(enter, true);
  return true;
}

void NewDirectoryRow::paintEvent(QPaintEvent* /*event*/) {
  constexpr int kSymbol = 16;
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  PaintSymbol(painter, QRect(12, (height() - kSymbol) / 2, kSymbol, kSymbol), "folder",
              EntryColor(palette(), "folder"));
}

void NewDirectoryRow::resizeEvent(QResizeEvent* /*event*/) {
  constexpr int kFrame = 6;
  constexpr int kMargin = 8;
  const int left = RowDelegate::kNameX - kFrame;
  name_->setGeometry(left, 0, width() - left - kMargin, height());
}

}  // namespace corvane
