// What keys and the mouse do in a listing.

#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <chrono>
#include <utility>

#include "app/browser/BrowserCommands.h"
#include "app/browser/DirListView.h"
#include "app/browser/RowDrop.h"

namespace corvane {
namespace {

// For what comes without its time: composed letters, and keys that a screen reader has seen first.
quint64 Now() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<quint64>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace

void DirListView::Invoke() {
  typed_.Forget();
  if (IsReady() && FirstSelected() >= 0) Q_EMIT Invoked();
}

void DirListView::TypeLetters(const QString& letters, quint64 milliseconds) {
  if (letters == QLatin1String("/")) {
    Q_EMIT FilterWanted();
  } else {
    SelectName(typed_.Type(letters, milliseconds));
  }
}

void DirListView::keyPressEvent(QKeyEvent* event) {
  const QString text = event->text();
  const bool command =
      event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (state() != EditingState) Invoke();  // the key that confirms a name comes here too
  } else if (event->key() == Qt::Key_Escape) {
    Q_EMIT Escaped();
  } else if (event->key() == Qt::Key_I && event->modifiers() == Qt::ControlModifier) {
    Q_EMIT FilterWanted();
  } else if (!command && !text.isEmpty() && text.front().isPrint()) {
    TypeLetters(text, event->timestamp() != 0 ? event->timestamp() : Now());
  } else {
    QTreeView::keyPressEvent(event);
  }
}

void DirListView::inputMethodEvent(QInputMethodEvent* event) {
  if (event->commitString().isEmpty()) return;
  TypeLetters(event->commitString(), Now());
  event->accept();
}

// Without a current row the toolkit goes to the first one, whatever the key.
QModelIndex DirListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  if (!currentIndex().isValid() && action == MoveEnd) {
    return model_->index(model_->ShownCount() - 1, DirListModel::kName);
  }
  return QTreeView::moveCursor(action, modifiers);
}

void DirListView::mousePressEvent(QMouseEvent* event) {
  switch (event->button()) {
    case Qt::BackButton: Q_EMIT BackWanted(); break;
    case Qt::ForwardButton: Q_EMIT ForwardWanted(); break;
    default: QTreeView::mousePressEvent(event);
  }
}

void DirListView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid()) {
    Invoke();
  }
}

// The pressed row is the current one; a click with Ctrl may have deselected it.
void DirListView::startDrag(Qt::DropActions /*actions*/) {
  const QModelIndex pressed = currentIndex();
  if (!pressed.flags().testFlag(Qt::ItemIsDragEnabled) ||
      !selectionModel()->isRowSelected(pressed.row(), {})) {
    return;
  }
  std::vector<std::string> names;
  for (const int row : SelectedRows()) {
    if (!model_->At(row).IsDots()) names.push_back(model_->At(row).Name());
  }
  drop_->Begin(std::move(names));
  Q_EMIT DragBegins(pressed.row());
}

// On empty space the menu is about the directory: nothing stays selected.
void DirListView::contextMenuEvent(QContextMenuEvent* event) {
  if (!enabled_) return;
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const int first = FirstSelected();
  const QModelIndex index =
      byKey ? model_->index(first, DirListModel::kName) : indexAt(event->pos());
  if (index.isValid() && model_->At(index.row()).IsDots()) return;
  if (!index.isValid()) {
    clearSelection();
  } else if (!selectionModel()->isRowSelected(index.row(), {})) {
    SelectRow(index.row());
  }
  QMenu* menu = SetupPopUpMenu();
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const QPoint place = index.isValid() ? visualRect(index).center() : viewport()->rect().center();
  menu->popup(byKey ? viewport()->mapToGlobal(place) : event->globalPos());
}

QMenu* DirListView::SetupPopUpMenu() {
  const int first = FirstSelected();
  const CommandState state{.ready = IsReady(),
                           .selected = first < 0 ? 0 : model_->At(first).Type(),
                           .anyFile = HasFiles()};
  return BrowserCommands::MakePopUp(
      this, state, [this](const BrowserCommand& command) { Q_EMIT Chosen(command); });
}

}  // namespace corvane
