#pragma once

#include <QLocale>
#include <QStringList>
#include <QTranslator>

namespace corvane {

/// The catalogues of the user's language, the program's own and the toolkit's. The program's texts
/// stand in the sources in English.
class Translations {
 public:
  /// Looks for the first of these languages, as "de-AT" or "de"; needs no application object yet.
  explicit Translations(const QStringList& languages = QLocale::system().uiLanguages());

  /// What is shown from here on is in that language, for as long as this object lives.
  void Install();

  /// A text that is needed while there is no application object.
  [[nodiscard]] QString Text(const char* context, const char* english) const;

 private:
  QString language_;
  QTranslator own_;
  QTranslator toolkit_;
};

}  // namespace corvane
