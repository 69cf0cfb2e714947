#include "app/desktop/Autostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <optional>

namespace corvane {
namespace {

/// Where the session looks for it, which takes a relative path for none.
QString Folder() {
  const QString named = qEnvironmentVariable("XDG_CONFIG_HOME");
  return (QDir::isAbsolutePath(named) ? named : QDir::homePath() + "/.config") + "/autostart";
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
         " -deskbar login\n"
         "Icon=corvane\n"
         "Terminal=false\n";
}

/// Whether the line switches an entry off, as desktops write it.
bool SwitchesOff(const QByteArray& line) {
  const QByteArray plain = line.simplified().replace(" ", "").toLower();
  return plain == "hidden=true" || plain == "x-gnome-autostart-enabled=false";
}

/// The entry as it is; nothing where there is none or it is no such file.
std::optional<QByteArray> Stored() {
  constexpr qint64 kMost = 65536;
  QFile file(Entry());
  if (!file.open(QIODevice::ReadOnly) || file.size() > kMost) return {};
  return file.readAll();
}

std::string Store(const QByteArray& contents) {
  QDir().mkpath(Folder());
  QSaveFile file(Entry());
  if (file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.commit()) {
    return {};
  }
  return file.errorString().toStdString();
}

}  // namespace

bool Autostart::IsSet() {
  const auto stored = Stored();
  return stored.has_value() && std::ranges::none_of(stored->split('\n'), SwitchesOff);
}

// What somebody else has written into the entry stays there.
std::string Autostart::Set(bool on) {
  const auto stored = Stored();
  if (!on) {
    const QByteArray head = "[Desktop Entry]\n";
    if (stored.has_value() && *stored != Contents() && stored->contains(head)) {
      return Store(QByteArray(*stored).replace(head, head + "Hidden=true\n"));
    }
    QFile old(Entry());
    return !old.exists() || old.remove() ? std::string() : old.errorString().toStdString();
  }
  QList<QByteArray> lines = stored.value_or(Contents()).split('\n');
  lines.removeIf(SwitchesOff);
  return Store(lines.join('\n'));
}

}  // namespace corvane
