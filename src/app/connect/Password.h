#pragma once

#include <QClipboard>
#include <QLineEdit>
#include <string>
#include <string_view>

namespace corvane {

/// A field for a password: it holds one "*" for each key, and the text itself stays hidden.
///
/// The hidden text grows and shrinks at its end, by what PassFilter makes of the keys. Nothing can
/// be copied out of it. GUI thread.
class Password : public QLineEdit {
  Q_OBJECT

 public:
  explicit Password(QWidget* parent = nullptr);

  /// What was typed, in UTF-8.
  [[nodiscard]] const std::string& actualText() const { return hidden_; }
  /// Sets the hidden text; what is shown stays.
  void ByPass(std::string_view text) { hidden_ = text; }
  /// Sets the hidden text, and shows a "*" for each character and `more` beyond.
  void SetActualText(std::string_view text, int more = 0);

  /// Appends to the hidden text what one key has written.
  void PushChar(std::string_view key) { hidden_ += key; }
  /// Takes the last byte off the hidden text, if there is one.
  void PopChar();

  /// Puts `text`, in place of what is selected, behind the hidden text.
  void Type(const QString& text);
  /// Takes the "*" before the cursor, or what is selected, off what is shown.
  void EraseStars();
  void PasteFrom(QClipboard::Mode mode);

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void TextChanged(const QString& shown);

  std::string hidden_;
  qsizetype stars_ = 0;         // shown after the last change
  bool changingStars_ = false;  // the hidden text has been seen to
};

}  // namespace corvane
