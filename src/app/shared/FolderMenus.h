#pragma once

#include <map>
#include <string>
#include <string_view>

class QMenu;

namespace corvane {

/// The menus of folders within a menu of shortcuts. Each is made with the first call for it, below
/// what its menu holds by then. GUI thread.
class FolderMenus {
 public:
  explicit FolderMenus(QMenu& whole) : whole_(whole) {}

  /// The menu for what stands in the folder of that path; the whole for "".
  QMenu& Of(std::string_view folder);

 private:
  QMenu& whole_;
  std::map<std::string, QMenu*, std::less<>> menus_;
};

}  // namespace corvane
