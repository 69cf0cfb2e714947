#include "app/desktop/ReplicantView.h"

#include <QCursor>
#include <QGuiApplication>
#include <utility>
#include <vector>

#include "app/desktop/TrayShortcuts.h"
#include "app/shared/FolderMenus.h"
#include "app/shared/Icons.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/ScreenText.h"

namespace corvane {

ReplicantView::ReplicantView(std::function<void(const Message&)> launch)
    : launch_(std::move(launch)), icon_(ProgramIcon()) {
  menu_.setObjectName("PopUpMenu");
  connect(&menu_, &QMenu::aboutToShow, this, &ReplicantView::SetupPopUpMenu);
  SetupPopUpMenu();
  icon_.setToolTip(tr("Corvane"));
  icon_.setContextMenu(&menu_);
  connect(&icon_, &QSystemTrayIcon::activated, this, &ReplicantView::Clicked);
}

void ReplicantView::SetupPopUpMenu() {
  menu_.clear();
  qDeleteAll(menu_.findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
  connect(menu_.addAction(tr("&Launch Corvane")), &QAction::triggered, this,
          [this] { launch_(Message("RUNN"_what)); });
  menu_.addSeparator();
  SetupShortcuts(&menu_);
  menu_.addSeparator();
  connect(menu_.addAction(tr("&Remove from the tray")), &QAction::triggered, this,
          &ReplicantView::Removed);
}

void ReplicantView::SetupShortcuts(QMenu* menu) {
  const auto shortcuts = ReadForTray().value_or(std::vector<TrayShortcut>());
  if (shortcuts.empty()) menu->addAction(tr("The shortcuts could not be read."))->setEnabled(false);
  FolderMenus menus(*menu);
  for (const TrayShortcut& shortcut : shortcuts) menus.Of(shortcut.folder);
  for (const TrayShortcut& shortcut : shortcuts) {
    connect(menus.Of(shortcut.folder).addAction(ItemText(shortcut.name)), &QAction::triggered, this,
            [this, open = shortcut.open] { Open(open); });
  }
}

void ReplicantView::Open(const Message& open) {
  if (!SiteIn(open).has_value()) {
    return Warn(tr("The port of this shortcut is no number from 1 to 65535."));
  }
  launch_(open);
}

// Beside the context menu, which the tray itself opens. Only X11 lets a program without a window
// open a menu at the pointer.
void ReplicantView::Clicked(QSystemTrayIcon::ActivationReason reason) {
  if (reason != QSystemTrayIcon::Trigger) return;
  if (QGuiApplication::platformName() == "xcb") return menu_.popup(QCursor::pos());
  launch_(Message("RUNN"_what));
}

void ReplicantView::Warn(const QString& text) {
  icon_.showMessage(tr("Corvane"), text, QSystemTrayIcon::Warning);
}

}  // namespace corvane
