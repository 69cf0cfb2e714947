#include "app/Autostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>

namespace corvane {
namespace {

QString Folder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/autostart";
}

QString Entry() {
  return Folder() + "/corvane-tray.desktop";
}

/// A path as the first word of an entry's "Exec" (freedesktop.org, desktop entries, the Exec key):
/// quoted, and what the quotes and the file's own escapes would take is escaped for both.
QByteArray ExecWord(const QByteArray& path) {
  QByteArray word = "\"";
  for (const char byte : path) {
    if (byte == '"' || byte == '`' || byte == '$') word += "\\\\";
    if (byte == '\\') word += "\\\\\\";
    if (byte == '%') word += '%';
    word += byte;
  }
  return word + '"';
}

QByteArray Contents() {
  const QByteArray program = QFile::encodeName(QCoreApplication::applicationFilePath());
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Corvane\n"
         "Comment=Saved FTP connections in the tray\n"
         "Comment[de]=Gespeicherte FTP-Verbindungen im Benachrichtigungsfeld\n"
         "Exec=" +
         ExecWord(program) +
         " -deskbar\n"
         "Icon=corvane\n"
         "Terminal=false\n";
}

}  // namespace

bool Autostart::IsSet() {
  QFile file(Entry());
  if (!file.open(QIODevice::ReadOnly)) return false;
  const QList<QByteArray> lines = file.read(65536).split('\n');
  return std::ranges::none_of(lines, [](const QByteArray& line) {
    const QByteArray plain = line.simplified().replace(" ", "").toLower();
    return plain == "hidden=true" || plain == "x-gnome-autostart-enabled=false";
  });
}

std::string Autostart::Set(bool on) {
  QFile old(Entry());
  if (!on) {
    if (!old.exists() || old.remove()) return {};
    return old.errorString().toStdString();
  }
  QDir().mkpath(Folder());
  QSaveFile file(Entry());
  const QByteArray contents = Contents();
  if (file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.commit()) {
    return {};
  }
  return file.errorString().toStdString();
}

}  // namespace corvane
