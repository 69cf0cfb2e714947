#include "app/desktop/TextEditor.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <QWidget>

#include "app/desktop/Reveal.h"
#include "app/shared/Alerts.h"
#include "app/shared/GuiThread.h"
#include "app/shared/ScreenText.h"
#include "kit/Background.h"

namespace corvane {
namespace {

constexpr qint64 kLargest = 4 << 20;  // bytes of a file that the desktop keeps

/// The value of a key in a group of a file such as desktop entries are.
QString Value(const QString& path, const QString& group, const QString& key) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly) || file.size() > kLargest) return {};
  bool inside = false;
  for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
    if (line.startsWith('[')) inside = line.trimmed() == '[' + group + ']';
    const qsizetype equals = line.indexOf('=');
    if (inside && equals > 0 && line.left(equals).trimmed() == key)
      return line.mid(equals + 1).trimmed();
  }
  return {};
}

QString ExecOf(const QString& entry) {
  const QString path = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, entry);
  if (path.isEmpty()) return {};
  QString exec = Value(path, "Desktop Entry", "Exec");
  if (exec.isEmpty() || Value(path, "Desktop Entry", "Terminal") != "true") return exec;
  return QStandardPaths::findExecutable("x-terminal-emulator").isEmpty()
             ? QString()
             : "x-terminal-emulator -e " + exec;
}

bool Start(QStringList words) {
  if (words.isEmpty()) return false;
  const QString program = words.takeFirst();
  return QProcess::startDetached(program, words);
}

void Warn(QWidget* window, const std::string& command) {
  Alerts::Show(
      window,
      {.title = QCoreApplication::translate("TextEditor", "Edit"),
       .text = QCoreApplication::translate("TextEditor", "The text editor “%1” does not start.")
                   .arg(ToText(command)),
       .heading = QCoreApplication::translate("TextEditor", "The text editor “%1” does not start.")
                      .arg(ToText(command)),
       .advice = QCoreApplication::translate("TextEditor",
                                             "The preferences say which program edits text.")});
}

}  // namespace

// Names of the desktop first, then those of the system; of the same kind, the desktop's own list
// before what merely can open text.
QString TextEditor::OfDesktop() {
  QStringList lists;
  for (const QString& name : QString(qEnvironmentVariable("XDG_CURRENT_DESKTOP")).split(':')) {
    if (name.isEmpty()) continue;
    lists += QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation,
                                       name.toLower() + "-mimeapps.list");
    lists += QStandardPaths::locateAll(QStandardPaths::ApplicationsLocation,
                                       name.toLower() + "-mimeapps.list");
  }
  lists += QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, "mimeapps.list");
  lists += QStandardPaths::locateAll(QStandardPaths::ApplicationsLocation, "mimeapps.list");
  for (const QString& list : lists) {
    for (const QString& entry : Value(list, "Default Applications", "text/plain").split(';')) {
      if (QString exec = entry.isEmpty() ? "" : ExecOf(entry); !exec.isEmpty()) return exec;
    }
  }
  for (const QString& list :
       QStandardPaths::locateAll(QStandardPaths::ApplicationsLocation, "mimeinfo.cache")) {
    for (const QString& entry : Value(list, "MIME Cache", "text/plain").split(';')) {
      if (QString exec = entry.isEmpty() ? "" : ExecOf(entry); !exec.isEmpty()) return exec;
    }
  }
  return {};
}

QStringList TextEditor::Filled(const QString& exec, const QString& path) {
  QStringList words;
  bool placed = false;
  for (const QString& word : QProcess::splitCommand(exec)) {
    if (word == "%f" || word == "%F") {
      words += path;
      placed = true;
    } else if (word == "%u" || word == "%U") {
      words += QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
      placed = true;
    } else if (word.size() != 2 || !word.startsWith('%')) {
      words += QString(word).replace("%%", "%");
    }
  }
  if (!words.isEmpty() && !placed) words += path;
  return words;
}

void TextEditor::Open(QWidget* window, const std::string& path, const std::string& command) {
  const QString file = QFile::decodeName(path.c_str());
  if (!command.empty()) {
    const QString own = QFile::decodeName(command.c_str());
    if (!Start(Filled(own, file))) Warn(window, command);
    return;
  }
  const auto look = [window = QPointer(window), path, file] {
    OnGuiThread([window, path, words = Filled(OfDesktop(), file)] {
      if (!Start(words) && !window.isNull()) Reveal::Open(window, path);
    });
  };
  if (!Background::Start("look", look)) Reveal::Open(window, path);
}

}  // namespace corvane
