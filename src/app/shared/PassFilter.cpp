#include "app/shared/PassFilter.h"

#include <QKeyEvent>

#include "app/shared/Password.h"

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
    case Qt::Key_Backspace: field_.Backspace(); return true;
    case Qt::Key_Delete: field_.Delete(); return true;
    default: break;
  }
  const QString text = key.text();
  if (text.isEmpty() || text.at(0) < u' ' || text.at(0) == u'\x7F') return false;
  field_.Type(text);
  return true;
}

}  // namespace corvane
