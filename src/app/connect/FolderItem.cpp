#include "app/connect/FolderItem.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QTreeWidget>
#include <utility>

#include "app/connect/ShortCutItem.h"
#include "app/shared/ScreenText.h"
#include "sites/ShortcutFolders.h"

namespace corvane {

FolderItem::FolderItem(std::string path) : QTreeWidgetItem(kType), path_(std::move(path)) {
  const QString name = ToText(FolderName(path_));
  setText(ShortCutItem::kLabel, name);
  setData(ShortCutItem::kLabel, Qt::AccessibleTextRole,
          QCoreApplication::translate("ShortCutItem", "%1, folder").arg(name));
  setData(ShortCutItem::kLabel, ShortCutItem::kSign, QStringLiteral("folder"));
  setFlags(flags() | Qt::ItemIsEditable | Qt::ItemIsDropEnabled | Qt::ItemIsDragEnabled);
}

FolderItem* FolderItem::Of(QTreeWidgetItem* item) {
  return item != nullptr && item->type() == kType ? static_cast<FolderItem*>(item) : nullptr;
}

bool FolderItem::operator<(const QTreeWidgetItem& other) const {
  return StandsBefore(*this, other);
}

bool StandsBefore(const QTreeWidgetItem& one, const QTreeWidgetItem& other) {
  const QHeaderView& header = *one.treeWidget()->header();
  const bool folder = one.type() == FolderItem::kType;
  if (folder != (other.type() == FolderItem::kType)) {
    return folder == (header.sortIndicatorOrder() == Qt::AscendingOrder);
  }
  const int column = header.sortIndicatorSection();
  return one.text(column).localeAwareCompare(other.text(column)) < 0;
}

}  // namespace corvane
