#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace corvane {

/// A password and the stars that stand for it in its field: what an edit changes.
struct HiddenText {
  std::string bytes;         ///< UTF-8, as far as the user typed it
  qsizetype stars = 0;       ///< shown in the field
  qsizetype cursor = 0;      ///< before the star of that number
  qsizetype selected = 0;    ///< how many stars are selected
  qsizetype selection = -1;  ///< the first of them; -1 where there is none

  /// Appends what one key has written.
  void PushChar(std::string_view key) { bytes += key; }
  /// Takes the last byte off, if there is one.
  void PopChar() {
    if (!bytes.empty()) bytes.pop_back();
  }
};

/// Everything in which the two styles of the program differ. The preference "Classic style" chooses
/// one; windows ask it and never look at that preference themselves. Without state. GUI thread.
class Style {
 public:
  virtual ~Style() = default;

  /// The style that the settings in force ask for. Asked each time it is needed, not kept.
  [[nodiscard]] static const Style& InForce();

  /// Puts `typed` in place of the selection or at the cursor.
  virtual void Type(HiddenText& text, const QString& typed) const = 0;
  virtual void Backspace(HiddenText& text) const = 0;
  virtual void Delete(HiddenText& text) const = 0;
  /// Follows a change that took `stars` stars behind the cursor off the field by itself.
  virtual void Lose(HiddenText& text, qsizetype stars) const = 0;
  /// How many more stars than characters the default password shows.
  [[nodiscard]] virtual int ExtraStars() const = 0;
};

/// Into how many characters the bytes fall: of UTF-8 where they are that, else each its own.
[[nodiscard]] qsizetype CharactersIn(const std::string& bytes);

}  // namespace corvane
