#include "app/connect/Password.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include "app/connect/PassFilter.h"
#include "app/shared/ScreenText.h"

namespace corvane {

Password::Password(QWidget* parent) : QLineEdit(parent) {
  setEchoMode(QLineEdit::Password);
  installEventFilter(new PassFilter(this));
  connect(this, &QLineEdit::textChanged, this, &Password::TextChanged);
}

void Password::SetActualText(std::string_view text, int more) {
  HiddenText filled{.bytes = std::string(text)};
  filled.stars = filled.cursor = CharactersIn(filled.bytes) + more;
  Show(filled);
}

HiddenText Password::State() const {
  return {.bytes = hidden_,
          .stars = text().size(),
          .cursor = cursorPosition(),
          .selected = selectionLength(),
          .selection = selectionStart()};
}

void Password::Show(const HiddenText& changed) {
  const QScopedValueRollback<bool> ours(changingStars_, true);
  hidden_ = changed.bytes;
  setText(QString(changed.stars, u'*'));
  setCursorPosition(static_cast<int>(changed.cursor));
}

void Password::Type(const QString& text) {
  HiddenText state = State();
  Style::InForce().Type(state, text);
  Show(state);
}

void Password::Backspace() {
  HiddenText state = State();
  Style::InForce().Backspace(state);
  Show(state);
}

void Password::Delete() {
  HiddenText state = State();
  Style::InForce().Delete(state);
  Show(state);
}

void Password::PasteFrom(QClipboard::Mode mode) {
  // What stands behind a line's end belongs to something else.
  const QString text = QApplication::clipboard()->text(mode).section(u'\n', 0, 0);
  if (!text.isEmpty()) Type(text);
}

// What the filter has not seen, by a command's key or a program that helps the user to write.
void Password::TextChanged(const QString& shown) {
  const qsizetype lost = stars_ - shown.size();
  stars_ = shown.size();
  if (changingStars_) return;
  QString written = shown;
  written.remove(u'*');
  if (!written.isEmpty()) {
    SetActualText((written == shown ? "" : hidden_) + ToBytes(written));
  } else if (shown.isEmpty()) {
    hidden_.clear();
  } else if (lost > 0) {
    HiddenText state = State();
    Style::InForce().Lose(state, lost);
    hidden_ = state.bytes;
  }
}

void Password::contextMenuEvent(QContextMenuEvent* event) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(tr("&Paste"), this, [this] { PasteFrom(QClipboard::Clipboard); });
  QAction* clear = menu->addAction(tr("&Clear"), this, &QLineEdit::clear);
  clear->setEnabled(!text().isEmpty());
  menu->popup(event->globalPos());
}

void Password::dropEvent(QDropEvent* event) {
  Type(event->mimeData()->text().section(u'\n', 0, 0));
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void Password::inputMethodEvent(QInputMethodEvent* event) {
  if (!event->commitString().isEmpty()) Type(event->commitString());
  event->accept();
}

void Password::mouseReleaseEvent(QMouseEvent* event) {
  const bool paste =
      event->button() == Qt::MiddleButton && QApplication::clipboard()->supportsSelection();
  if (paste) return PasteFrom(QClipboard::Selection);
  QLineEdit::mouseReleaseEvent(event);
}

}  // namespace corvane
