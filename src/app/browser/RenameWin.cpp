#include "app/browser/RenameWin.h"

#include <QFormLayout>
#include <QLineEdit>

#include "app/shared/Windows.h"

namespace corvane {

RenameWin::RenameWin(QWidget* browser)
    : QWidget(browser, kFixedWindow),
      original_(new QLineEdit(this)),
      renameTo_(new QLineEdit(this)) {
  setObjectName("DirMView");
  setWindowTitle(tr("Rename Item"));
  original_->setObjectName("Filename");
  original_->setMinimumWidth(fontMetrics().averageCharWidth() * 34);
  renameTo_->setObjectName("RenameTo");
  auto* fields = new QFormLayout(this);
  fields->setSizeConstraint(QLayout::SetFixedSize);
  fields->setContentsMargins(12, 12, 12, 12);
  fields->addRow(tr("&Filename:"), original_);
  fields->addRow(tr("Rename &To:"), renameTo_);
  fields->addRow(AskingButtons(this, {tr("&Rename"), "RenameFile"}, [this] {
    hide();
    Q_EMIT Entered();
  }));
}

void RenameWin::Fill(const QString& name) {
  original_->setText(name);
  original_->setCursorPosition(0);
}

QString RenameWin::Original() const {
  return original_->text();
}

QString RenameWin::RenameTo() const {
  return renameTo_->text();
}

void RenameWin::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  renameTo_->setFocus();
  renameTo_->selectAll();
}

}  // namespace corvane
