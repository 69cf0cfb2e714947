#include "app/shared/FolderMenus.h"

#include <QMenu>

#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"
#include "sites/ShortcutFolders.h"

namespace corvane {

QMenu& FolderMenus::Of(std::string_view folder) {
  if (folder.empty()) return whole_;
  const auto known = menus_.find(folder);
  if (known != menus_.end()) return *known->second;
  QMenu& around = Of(FolderAround(folder));
  auto* menu = new QMenu(ItemText(std::string(FolderName(folder))), &around);
  menu->setIcon(Symbol("folder-plain"));
  around.addMenu(menu);
  menus_.emplace(folder, menu);
  return *menu;
}

}  // namespace corvane
