#include "app/Windows.h"

#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QWidget>

#include "app/MWindow.h"
#include "app/Text.h"

namespace corvane {

void BringForward(QWidget* window) {
  if (window->isMinimized()) {
    window->showNormal();
  } else {
    window->show();
  }
  window->raise();
  window->activateWindow();
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

void AddWindowItems(QMenu& menu, int fixed, const std::vector<MWindow*>& windows,
                    const MWindow* except) {
  const QList<QAction*> old = menu.actions();
  for (auto i = qsizetype{fixed}; i < old.size(); ++i) delete old[i];
  bool separated = false;
  for (MWindow* window : windows) {
    if (window == except) continue;
    if (!separated) menu.addSeparator();
    separated = true;
    menu.addAction(Label(window->windowTitle()), window,
                   [window] { window->MessageReceived(Message("SHWD"_what)); });
  }
}

}  // namespace corvane
