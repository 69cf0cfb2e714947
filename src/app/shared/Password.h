#pragma once

#include <QClipboard>
#include <QLineEdit>
#include <string>
#include <string_view>

#include "app/shared/Style.h"

namespace corvane {

/// A field for a password: it shows stars, and the text itself stays hidden until the user presses
/// the eye. PassFilter hands it the keys, and the style in force says what they do to the hidden
/// text. Nothing can be copied out of it while it is hidden. GUI thread.
class Password : public QLineEdit {
  Q_OBJECT

 public:
  explicit Password(QWidget* parent = nullptr);

  /// What was typed, in UTF-8, or the bytes that SetActualText was given.
  [[nodiscard]] const std::string& actualText() const { return hidden_; }
  /// Sets the hidden text; what is shown stays.
  void ByPass(std::string_view text) { hidden_ = text; }
  /// Sets the hidden text, and shows a "*" for each character and `more` beyond; it is hidden
  /// again.
  void SetActualText(std::string_view text, int more = 0);

  /// What a key, a paste or a drop writes.
  void Type(const QString& text);
  void Backspace();
  void Delete();
  void PasteFrom(QClipboard::Mode mode);

  /// Shows the hidden text itself, a character for each star, or the stars again.
  void Reveal(bool revealed);
  [[nodiscard]] bool Revealed() const { return echoMode() == QLineEdit::Normal; }

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  [[nodiscard]] HiddenText State() const;
  void Show(const HiddenText& changed);
  void TextChanged(const QString& shown);
  [[nodiscard]] QString ShownFor(qsizetype stars) const;

  std::string hidden_;
  QAction* eye_;                // seen where there is something to reveal
  qsizetype stars_ = 0;         // shown after the last change
  bool changingStars_ = false;  // together with the hidden text
};

}  // namespace corvane
