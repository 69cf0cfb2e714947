#pragma once

#include <QString>
#include <QStringList>
#include <string>

class QWidget;

namespace corvane {

/// Opens files in the user's text editor.
class TextEditor {
 public:
  /// Opens the file `path` (raw bytes) with `command` or, where that is empty, in the desktop's
  /// editor for plain text; where there is none, in whatever opens such a file. "%f" in a command
  /// is the file, else it comes last. GUI thread; returns at once. An alert over `window` says
  /// where nothing starts.
  static void Open(QWidget* window, const std::string& path, const std::string& command);

  /// The command line of a desktop entry's "Exec" for a file, as freedesktop.org
  /// has it; empty where it is none.
  [[nodiscard]] static QStringList Filled(const QString& exec, const QString& path);
  /// The "Exec" of the desktop's program for plain text; empty where there is none. Any thread;
  /// looks at the disk.
  [[nodiscard]] static QString OfDesktop();
};

}  // namespace corvane
