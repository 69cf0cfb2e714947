#include "app/connect/PassFilter.h"

#include <QKeyEvent>

#include "app/connect/Password.h"

namespace corvane {

PassFilter::PassFilter(Password* field) : QObject(field), field_(*field) {}

bool PassFilter::eventFilter(QObject* target, QEvent* event) {
  if (target != &field_ || event->type() != QEvent::KeyPress) return false;
  return Filter(*static_cast<const QKeyEvent*>(event));
}

bool PassFilter::Filter(const QKeyEvent& key) {
  constexpr auto kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  if (key.matches(QKeySequence::Paste)) {
    field_.PasteFrom(QClipboard::Clipboard);
    return true;
  }
  if ((key.modifiers() & kCommands) != 0) return false;
  switch (key.key()) {
    case Qt::Key_Backspace: Backspace(); return true;
    case Qt::Key_Delete: return true;
    default: break;
  }
  const QString text = key.text();
  if (text.isEmpty() || text.at(0) < u' ' || text.at(0) == u'\x7F') return false;
  field_.Type(text);
  return true;
}

// One byte, and one more for each place from the selection's end down to its start, both included:
// two bytes where nothing is selected.
void PassFilter::Backspace() {
  const qsizetype selected = field_.selectionLength();
  if (selected == 0 && field_.cursorPosition() == 0) return;
  field_.PopChar();
  for (qsizetype i = 0; i <= selected; ++i) field_.PopChar();
  field_.EraseStars();
}

}  // namespace corvane
