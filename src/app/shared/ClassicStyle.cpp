#include "app/shared/ClassicStyle.h"

namespace corvane {
namespace {

void PopChars(HiddenText& text, qsizetype count) {
  for (; count > 0; --count) text.PopChar();
}

void EraseStars(HiddenText& text, qsizetype first, qsizetype count) {
  text.stars -= count;
  text.cursor = first;
  text.selected = 0;
}

}  // namespace

// A byte goes for each selected star.
void ClassicStyle::Type(HiddenText& text, const QString& typed) const {
  if (text.selected > 0) {
    PopChars(text, text.selected);
    EraseStars(text, text.selection, text.selected);
  }
  const std::string bytes = typed.toStdString();
  text.PushChar(bytes);
  const qsizetype stars = CharactersIn(bytes);
  text.stars += stars;
  text.cursor += stars;
}

// One byte, and one more for each place from the selection's end down to its start, both included:
// two bytes where nothing is selected.
void ClassicStyle::Backspace(HiddenText& text) const {
  if (text.selected == 0 && text.cursor == 0) return;
  PopChars(text, text.selected + 2);
  if (text.selected > 0) {
    EraseStars(text, text.selection, text.selected);
  } else {
    EraseStars(text, text.cursor - 1, 1);
  }
}

void ClassicStyle::Delete(HiddenText& /*text*/) const {}

void ClassicStyle::Lose(HiddenText& text, qsizetype stars) const {
  PopChars(text, stars);
}

}  // namespace corvane
