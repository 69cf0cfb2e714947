#include "app/shared/Password.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include "app/shared/PassFilter.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"

namespace corvane {

Password::Password(QWidget* parent) : QLineEdit(parent), eye_(new QAction(this)) {
  addAction(eye_, QLineEdit::TrailingPosition);
  eye_->setVisible(false);
  connect(eye_, &QAction::triggered, this, [this] { Reveal(!Revealed()); });
  Reveal(false);
  installEventFilter(new PassFilter(this));
  connect(this, &QLineEdit::textChanged, this, &Password::TextChanged);
}

void Password::Reveal(bool revealed) {
  setEchoMode(revealed ? QLineEdit::Normal : QLineEdit::Password);
  eye_->setIcon(Symbol(revealed ? "eye-off" : "eye"));
  eye_->setText(revealed ? tr("Hide Password") : tr("Show Password"));
  Show(State());
}

// One character for each star, so that the cursor and a selection mean the same in both.
QString Password::ShownFor(qsizetype stars) const {
  if (!Revealed()) return QString(stars, u'*');
  QString text;
  for (const char32_t character : QString::fromStdString(hidden_).toUcs4()) {
    const bool plain = QChar::isPrint(character) && !QChar::requiresSurrogates(character);
    text += plain ? QChar(static_cast<char16_t>(character)) : QChar(QChar::ReplacementCharacter);
  }
  return text.leftJustified(stars, u'*', true);
}

void Password::SetActualText(std::string_view text, int more) {
  if (Revealed()) Reveal(false);
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
  setText(ShownFor(changed.stars));
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
  eye_->setVisible(stars_ > 0);
  if (changingStars_) return;
  if (Revealed() && lost <= 0) {
    hidden_ = ToBytes(shown);
    return;
  }
  QString written = Revealed() ? QString() : shown;
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
  if (eye_->isVisible()) menu->addAction(eye_);
  menu->popup(event->globalPos());
}

void Password::hideEvent(QHideEvent* event) {
  if (Revealed()) Reveal(false);
  QLineEdit::hideEvent(event);
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
