// The menus of the list of shortcuts.

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

#include "app/connect/FolderItem.h"
#include "app/connect/ShortCutItem.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutExchange.h"
#include "app/connect/ShortcutTree.h"
#include "app/shared/IconButton.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Symbols.h"
#include "app/shared/Windows.h"

namespace corvane {

void ShortCutWindow::MakeMenus() {
  menuBar()->setObjectName("ShortcutWinMenuBar");
  MakeFileMenu();
  MakeEditMenu();
  AddCloseKey(this);
  for (QAction* menu : menuBar()->actions()) {
    connect(menu->menu(), &QMenu::aboutToShow, this, &ShortCutWindow::MenusBeginning);
  }
}

void ShortCutWindow::MakeFileMenu() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  const auto add = [this, file](const QString& text, const QKeySequence& key, std::uint32_t what) {
    return file->addAction(text, key, this, [this, what] { MessageReceived(Message(what)); });
  };
  new_ = add(tr("&New Shortcut"), QKeySequence("Ctrl+N"), "nwst"_what);
  newFolder_ = file->addAction(tr("New &Folder"), QKeySequence("Ctrl+Shift+N"), this,
                               [this] { list_->NewFolder(list_->CurrentFolder()); });
  connect_ =
      file->addAction(tr("&Connect"), QKeySequence("Ctrl+Return"), this, &ShortCutWindow::Connect);
  edit_ = add(tr("&Edit Shortcut"), QKeySequence("Ctrl+E"), "ITMV"_what);
  rename_ = file->addAction(tr("Rena&me Folder"), QKeySequence("F2"), this,
                            &ShortCutWindow::RenameFolder);
  remove_ = add(tr("&Remove Shortcut"), {}, "REMI"_what);
  remove_->setShortcuts({QKeySequence(Qt::Key_Backspace), QKeySequence(Qt::Key_Delete)});
  file->addSeparator();
  auto* exchange = new ShortcutExchange(*this);
  file->addAction(tr("&Import…"), QKeySequence("Ctrl+I"), exchange, &ShortcutExchange::Import);
  file->addAction(tr("E&xport…"), QKeySequence("Ctrl+Shift+E"), exchange,
                  &ShortcutExchange::Export);
  file->addSeparator();
  add(tr("&Save"), QKeySequence("Ctrl+S"), "SVPF"_what);
}

void ShortCutWindow::MakeEditMenu() {
  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  const auto add = [this, edit](const QString& text, const QKeySequence& key, std::uint32_t what) {
    return edit->addAction(text, key, this, [this, what] { MessageReceived(Message(what)); });
  };
  copy_ = add(tr("&Copy"), QKeySequence("Ctrl+C"), "COPY"_what);
  add(tr("Select &All"), QKeySequence("Ctrl+A"), "SALL"_what);
  edit->addAction(tr("&Search"), QKeySequence("Ctrl+F"), this, [this] {
    search_->setFocus();
    search_->selectAll();
  });
  edit->addSeparator();
  moveTo_ = edit->addMenu(tr("Move to F&older"));
  moveTo_->setObjectName("MoveToFolder");
  connect(moveTo_, &QMenu::aboutToShow, this, &ShortCutWindow::FillMoveMenu);
  up_ = edit->addAction(tr("Move &Up"), QKeySequence("Ctrl+Shift+Up"), this,
                        [this] { list_->MoveBy(-1); });
  down_ = edit->addAction(tr("Move &Down"), QKeySequence("Ctrl+Shift+Down"), this,
                          [this] { list_->MoveBy(1); });
}

// A place for each folder, those within others farther in.
void ShortCutWindow::FillMoveMenu() {
  moveTo_->clear();
  const auto add = [this](const QString& text, const char* symbol, const std::string& folder) {
    moveTo_->addAction(Symbol(symbol), text, this, [this, folder] { list_->MoveInto(folder); });
  };
  add(tr("Out of All Folders"), "up", {});
  if (!list_->Folders().empty()) moveTo_->addSeparator();
  for (const ShortcutFolder& folder : list_->Folders()) {
    add(ItemText(folder.path).replace("/", " / "), "folder-plain", folder.path);
  }
}

void ShortCutWindow::ShowContextMenu(const QPoint& place) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  QTreeWidgetItem* item = list_->itemAt(place);
  MenusBeginning();
  if (FolderItem::Of(item) != nullptr) {
    menu->addActions({rename_, remove_, moveTo_->menuAction()});
    menu->addSeparator();
  } else if (item != nullptr) {
    menu->addActions({connect_, edit_, remove_, copy_, moveTo_->menuAction()});
    menu->addSeparator();
  }
  menu->addActions({new_, newFolder_});
  menu->popup(list_->viewport()->mapToGlobal(place));
}

void ShortCutWindow::MenusBeginning() {
  if (copy_ == nullptr) return;
  const std::vector<QTreeWidgetItem*> selected = list_->Selected();
  const bool any = !selected.empty();
  const bool shortcut = FirstSelected() != nullptr;
  const bool folder = any && FolderItem::Of(selected.front()) != nullptr;
  const bool inFolders = Style::InForce().ShowsFolders();
  for (QAction* action : {connect_, edit_, copy_}) action->setEnabled(shortcut);
  for (QAction* action : {remove_, up_, down_}) action->setEnabled(any);
  remove_->setText(folder ? tr("&Remove Folder") : tr("&Remove Shortcut"));
  rename_->setEnabled(folder);
  moveTo_->setEnabled(any);
  for (QAction* action : {newFolder_, rename_, moveTo_->menuAction()}) {
    action->setVisible(inFolders);
    if (!inFolders) action->setEnabled(false);
  }
  newFolder_->setEnabled(inFolders);
  const QString why = tr("Select a shortcut first.");
  editButton_->setEnabled(shortcut);
  editButton_->setToolTip(shortcut ? QString() : why);
  removeButton_->setEnabled(any);
  removeButton_->setToolTip(any ? QString() : why);
}

}  // namespace corvane
