#include "app/program/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace corvane {

// Whoever prefers English gets it, though another language further down the list has a catalogue.
Translations::Translations(const QStringList& languages) {
  for (QString language : languages) {
    language.replace('-', '_');
    const QLocale::Language known = QLocale(language).language();
    if (known == QLocale::English || known == QLocale::C) return;
    if (!own_.load("corvane_" + language, QStringLiteral(":/translations"))) continue;
    language_ = language;
    return;
  }
}

void Translations::Install() {
  if (language_.isEmpty()) return;
  const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
  if (toolkit_.load("qtbase_" + language_, folder)) QCoreApplication::installTranslator(&toolkit_);
  QCoreApplication::installTranslator(&own_);
}

QString Translations::Text(const char* context, const char* english) const {
  const QString text = own_.translate(context, english);
  return text.isEmpty() ? QString::fromUtf8(english) : text;
}

}  // namespace corvane
