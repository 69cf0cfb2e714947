#pragma once

#include <QWidget>

namespace corvane {

class BrowserCommands;
class IconButton;
class PathField;

/// The bar above the listing: the ways through the server's directories, and where one is. GUI
/// thread.
class BrowserToolBar : public QWidget {
  Q_OBJECT

 public:
  explicit BrowserToolBar(QWidget* parent);

  [[nodiscard]] PathField& Path() { return *path_; }
  [[nodiscard]] const PathField& Path() const { return *path_; }

  /// Makes each button do what the command of its kind does, and be enabled when that is.
  void Follow(const BrowserCommands& commands);
  /// While something is waited for, the button for a fresh listing stops it instead.
  void SetBusy(bool busy);
  void SetFilterShown(bool shown);

 private:
  IconButton* back_;
  IconButton* forward_;
  IconButton* up_;
  IconButton* home_;
  IconButton* refresh_;
  IconButton* stop_;
  PathField* path_;
  IconButton* filter_;
};

}  // namespace corvane
