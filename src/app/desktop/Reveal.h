#pragma once

#include <QUrl>
#include <functional>
#include <string>

class QWidget;

namespace corvane {

/// Shows a local file in the desktop's file manager, or opens it. GUI thread; returns at once.
class Reveal {
 public:
  /// How the desktop is asked.
  struct Ways {
    /// Asks the file manager to show this entry in its folder; `then` gets whether it does.
    std::function<void(const QUrl& entry, std::function<void(bool shown)> then)> showEntry;
    /// Opens a folder or a file with whatever opens such; false when there is nothing.
    std::function<bool(const QUrl& entry)> open;
  };

  /// Shows `path` (raw bytes) in its folder. Where no file manager listens the folder is opened;
  /// where that fails too, an alert over `window` says where to look.
  static void Show(QWidget* window, const std::string& path);

  /// Opens the file `path` (raw bytes) in its program; an alert over `window` says where none does.
  static void Open(QWidget* window, const std::string& path);

  /// Replaces the ways from now on.
  static void Use(Ways ways);
  /// Those of this desktop.
  [[nodiscard]] static Ways Desktop();
};

}  // namespace corvane
