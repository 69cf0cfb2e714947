// What happens to the rows of the list of shortcuts.

#include <QApplication>
#include <QClipboard>
#include <QPointer>
#include <utility>

#include "app/connect/ConnectHost.h"
#include "app/connect/FolderItem.h"
#include "app/connect/ShortCutItem.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutTree.h"
#include "app/shared/Alerts.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "settings/ProcessSettings.h"
#include "sites/ParseUrl.h"
#include "sites/SecurityOf.h"
#include "sites/ShortcutStore.h"
#include "sites/SiteOf.h"

namespace corvane {

void ShortCutWindow::NewShortcut() {
  const Security security = SecurityOf(ProcessSettings::Get());
  app_.ShowEditor({.site = {.port = UsualPort(security), .security = security},
                   .folder = list_->CurrentFolder()},
                  *this, {});
}

ShortCutItem* ShortCutWindow::FirstSelected() const {
  for (QTreeWidgetItem* item : list_->Selected()) {
    if (ShortCutItem* row = ShortCutItem::Of(item)) return row;
  }
  return nullptr;
}

// Enter and a double click; on a folder the latter opens it.
void ShortCutWindow::Activate() {
  QTreeWidgetItem* item = list_->currentItem();
  const bool pressed = QApplication::mouseButtons() != Qt::NoButton;
  if (FolderItem::Of(item) == nullptr) return EditSelected();
  if (!pressed) item->setExpanded(!item->isExpanded());
}

void ShortCutWindow::EditSelected() {
  const ShortCutItem* item = FirstSelected();
  if (item == nullptr) return;
  app_.ShowEditor(
      item->Record(), *this,
      [list = QPointer<ShortCutWindow>(this), id = item->Id()](const Shortcut& changed) {
        return !list.isNull() && list->TakeOver(id, changed);
      });
}

// The row may have been moved while it was edited.
bool ShortCutWindow::TakeOver(int id, const Shortcut& changed) {
  ShortCutItem* row = list_->Find(id);
  if (row == nullptr) return false;
  Shortcut record = changed;
  record.folder = row->Record().folder;
  row->SetRecord(std::move(record));
  SetChanged(true);
  return true;
}

void ShortCutWindow::Connect() {
  const ShortCutItem* row = FirstSelected();
  if (row == nullptr) return;
  const Site& site = row->Record().site;
  if (site.host.empty() || site.port == 0) {
    return ShowStatus(tr("The port of this shortcut is no number from 1 to 65535."));
  }
  app_.PostMessage(OpenMessage(site));
}

void ShortCutWindow::RefuseLast() {
  const QString text = tr("You need to have at least one remaining shortcut.");
  if (!Style::InForce().AlertsOfFaults()) return ShowStatus(text);
  Alerts::Show(this, {.title = tr("Warning!"), .text = text});
}

void ShortCutWindow::RemoveSelected() {
  const std::vector<QTreeWidgetItem*> selected = list_->Selected();
  QTreeWidgetItem* item = selected.empty() ? nullptr : selected.front();
  if (const FolderItem* folder = FolderItem::Of(item)) return RemoveFolder(*folder);
  if (list_->InMenuOrder().size() == 1) return RefuseLast();
  if (item != nullptr) RemoveShortcut(ShortCutItem::Of(item));
}

// The row that now stands where it was is selected.
void ShortCutWindow::RemoveShortcut(ShortCutItem* item) {
  const QTreeWidgetItem* around =
      item->parent() != nullptr ? item->parent() : list_->invisibleRootItem();
  const int place = around->indexOfChild(item);
  list_->Remove(item);
  list_->clearSelection();
  list_->Select(around->child(place));
  SetChanged(true);
}

void ShortCutWindow::RemoveFolder(const FolderItem& folder) {
  const int count = list_->CountIn(folder.Path());
  // The path goes with the folder.
  if (folder.childCount() == 0) return list_->RemoveFolder(std::string(folder.Path()), true);
  const QString name = ToText(FolderName(folder.Path()));
  const QString question = tr("Remove the folder “%1”?").arg(name);
  const QString text =
      count == 1 ? tr("It holds 1 shortcut.") : tr("It holds %n shortcuts.", "", count);
  Alerts::Show(this,
               {.icon = QMessageBox::Question,
                .title = tr("Remove Folder"),
                .text = question,
                .detail = text,
                .buttons = {tr("Remove &All of It"), tr("&Keep What It Holds"), tr("&Cancel")},
                .preset = 2,
                .heading = question,
                .advice = text},
               [self = QPointer(this), path = folder.Path(), count](int button) {
                 if (self.isNull() || button > 1) return;
                 const auto all = static_cast<int>(self->list_->InMenuOrder().size());
                 if (button == 0 && count == all) return self->RefuseLast();
                 self->list_->RemoveFolder(path, button == 0);
               });
}

void ShortCutWindow::RenameFolder() {
  const std::vector<QTreeWidgetItem*> selected = list_->Selected();
  if (selected.empty() || FolderItem::Of(selected.front()) == nullptr) return;
  list_->setFocus();
  list_->editItem(selected.front(), ShortCutItem::kLabel);
}

void ShortCutWindow::CopySelected() {
  QString text;
  for (QTreeWidgetItem* item : list_->Selected()) {
    const ShortCutItem* row = ShortCutItem::Of(item);
    if (row == nullptr) continue;
    const Site& site = row->Record().site;
    text += QString::fromStdString(UrlOf(site, site.path).Written()) + '\n';
  }
  if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

void ShortCutWindow::AddRow(const Message& added) {
  const auto index = added.FindInt32("index");
  auto shortcut =
      index ? ShortcutStore::Read(*index) : ParseUrl(added.FindString("url").value_or(""), false);
  if (!shortcut.has_value()) return;
  list_->Add({*shortcut}, {});
  list_->Select(list_->InMenuOrder().back());
  RowsChanged();
}

void ShortCutWindow::Search(const QString& text) {
  list_->SetFilter(text);
  RowsChanged();
  MenusBeginning();
}

}  // namespace corvane
