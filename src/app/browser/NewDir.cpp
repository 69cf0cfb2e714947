#include "app/browser/NewDir.h"

#include <QFormLayout>
#include <QLineEdit>

#include "app/shared/Windows.h"

namespace corvane {

NewDir::NewDir(QWidget* browser) : QWidget(browser, kFixedWindow), name_(new QLineEdit(this)) {
  setObjectName("DirMView");
  setWindowTitle(tr("New Directory"));
  name_->setObjectName("DirBox");
  name_->setMinimumWidth(fontMetrics().averageCharWidth() * 34);
  auto* fields = new QFormLayout(this);
  fields->setSizeConstraint(QLayout::SetFixedSize);
  fields->setContentsMargins(12, 12, 12, 12);
  fields->addRow(tr("&Name:"), name_);
  fields->addRow(AskingButtons(this, {tr("Create &Dir"), "createDir"}, [this] {
    hide();
    Q_EMIT Entered();
  }));
}

QString NewDir::Name() const {
  return name_->text();
}

void NewDir::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  name_->setFocus();
  name_->selectAll();
}

}  // namespace corvane
