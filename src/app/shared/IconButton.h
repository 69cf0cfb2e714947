#pragma once

#include <QString>
#include <QToolButton>

namespace corvane {

/// A flat button with a symbol, as in tool bars: square, or with its text beside the symbol. Its
/// tooltip is also what it is called. GUI thread.
class IconButton : public QToolButton {
  Q_OBJECT

 public:
  /// A square one; `tip` says what it does.
  IconButton(const char* symbol, const QString& tip, QWidget* parent);

  /// Shows another symbol and says something else.
  void SetSymbol(const char* symbol, const QString& tip);
  /// Triggers `action`, and is enabled and called as it is; the key stands in the tooltip, and the
  /// action's status tip, which says why it cannot be had, where it is not enabled.
  void Follow(QAction* action);
  /// Puts `text`, in which "&" marks a key, beside the symbol.
  void ShowText(const QString& text);
};

}  // namespace corvane
