#include "app/shared/Windows.h"

#include <QAction>
#include <QDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QWidget>

#include "app/shared/ScreenText.h"

namespace corvane {

QWidget* Usable(QWidget* window) {
  for (QDialog* question : window->findChildren<QDialog*>()) {
    if (question->isVisible() && question->isModal()) return Usable(question);
  }
  return window;
}

void BringForward(QWidget* window) {
  if (window->isMinimized()) {
    window->showNormal();
  } else {
    window->show();
  }
  window->raise();
  QWidget* usable = Usable(window);
  usable->raise();
  usable->activateWindow();
}

void AddCloseKey(QWidget* window) {
  auto* close = new QAction(window);
  close->setShortcut(QKeySequence("Ctrl+W"));
  QObject::connect(close, &QAction::triggered, window, &QWidget::close);
  window->addAction(close);
}

void AddCloseKeys(QWidget* window) {
  AddCloseKey(window);
  window->actions().last()->setShortcuts({QKeySequence("Ctrl+W"), QKeySequence(Qt::Key_Escape)});
}

QWidget* AskingButtons(QWidget* window, const std::pair<QString, const char*>& accept,
                       const std::function<void()>& accepted) {
  auto* row = new QWidget(window);
  auto* cancel = new QPushButton(QObject::tr("&Cancel"), row);
  cancel->setObjectName("cancel");
  auto* button = new QPushButton(accept.first, row);
  button->setObjectName(accept.second);
  button->setDefault(true);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 8, 0, 0);
  layout->addStretch();
  layout->addWidget(cancel);
  layout->addWidget(button);
  QObject::connect(cancel, &QPushButton::clicked, window, &QWidget::hide);
  QObject::connect(button, &QPushButton::clicked, window, accepted);
  for (auto* field : window->findChildren<QLineEdit*>()) {
    QObject::connect(field, &QLineEdit::returnPressed, window, accepted);
  }
  // Enter presses the button that has the focus, as in a dialog.
  cancel->setAutoDefault(true);
  AddCloseKeys(window);
  return row;
}

void AddWindowItems(QMenu& menu, int fixed, const std::vector<QWidget*>& windows,
                    const QWidget* except) {
  const QList<QAction*> old = menu.actions();
  for (auto i = qsizetype{fixed}; i < old.size(); ++i) delete old[i];
  bool separated = false;
  for (QWidget* window : windows) {
    if (window == except) continue;
    if (!separated) menu.addSeparator();
    separated = true;
    menu.addAction(Label(window->windowTitle()), window, [window] { BringForward(window); });
  }
}

}  // namespace corvane
