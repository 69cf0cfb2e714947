#pragma once

#include <QUrl>
#include <functional>
#include <string>

class QWidget;

namespace corvane {

/// Shows a local file in the desktop's file manager. GUI thread; returns at once.
class Reveal {
 public:
  /// How the desktop is asked.
  struct Ways {
    /// Asks the file manager to show this entry in its folder; `then` gets whether it does.
    std::function<void(const QUrl& entry, std::function<void(bool shown)> then)> showEntry;
    /// Opens a folder with whatever opens folders; false when there is nothing.
    std::function<bool(const QUrl& folder)> openFolder;
  };

  /// Shows `path` (raw bytes) in its folder. Where no file manager listens the folder is opened;
  /// where that fails too, an alert over `window` says where to look.
  static void Show(QWidget* window, const std::string& path);

  /// Replaces the ways from now on.
  static void Use(Ways ways);
  /// Those of this desktop.
  [[nodiscard]] static Ways Desktop();
};

}  // namespace corvane
