#include "app/shared/IconButton.h"

#include <QAction>

#include "app/shared/LookStyle.h"
#include "app/shared/Symbols.h"

namespace corvane {

IconButton::IconButton(const char* symbol, const QString& tip, QWidget* parent)
    : QToolButton(parent) {
  setAutoRaise(true);
  setIconSize({16, 16});
  setFixedHeight(LookStyle::kControlHeight);
  setMinimumWidth(LookStyle::kControlHeight);
  setFocusPolicy(Qt::TabFocus);
  SetSymbol(symbol, tip);
}

void IconButton::SetSymbol(const char* symbol, const QString& tip) {
  setIcon(Symbol(symbol));
  setToolTip(tip);
  setAccessibleName(tip);
}

void IconButton::Follow(QAction* action) {
  const auto match = [this, action] {
    setEnabled(action->isEnabled());
    const QString name = action->text().remove('&');
    const QString key = action->shortcut().toString(QKeySequence::NativeText);
    const bool explained = !action->isEnabled() && !action->statusTip().isEmpty();
    if (accessibleName() != name) setAccessibleName(name);
    setToolTip(explained       ? action->statusTip()
               : key.isEmpty() ? name
                               : name + QStringLiteral(" (") + key + ')');
  };
  connect(action, &QAction::changed, this, match);
  connect(this, &QToolButton::clicked, action, &QAction::trigger);
  match();
}

void IconButton::ShowText(const QString& text) {
  setMinimumWidth(0);  // as wide as the text takes
  setText(text);
  setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

}  // namespace corvane
