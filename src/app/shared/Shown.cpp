#include "app/shared/Shown.h"

#include <QCoreApplication>
#include <string_view>

#include "app/shared/ScreenText.h"

namespace corvane {

QString Shown(const Text& text) {
  if (text.Identifier().empty()) return ToLines(text.Bytes());
  const QString sentence =
      QCoreApplication::translate("Engine", std::string(text.Identifier()).c_str());
  const std::u16string_view words(reinterpret_cast<const char16_t*>(sentence.utf16()),
                                  static_cast<std::size_t>(sentence.size()));
  QString shown;
  const auto fill = [&text](std::size_t place) {
    return place < text.Places().size() ? Shown(text.Places()[place]) : QString();
  };
  FillPlaces(words, shown, fill);
  return shown;
}

QString ShownInLine(const Text& text) {
  return Shown(text).simplified();
}

}  // namespace corvane
