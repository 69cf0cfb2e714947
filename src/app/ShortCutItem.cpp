#include "app/ShortCutItem.h"

#include <QCoreApplication>
#include <utility>

#include "app/Text.h"
#include "settings/ShortcutStore.h"

namespace corvane {

ShortCutItem::ShortCutItem(Shortcut shortcut) {
  SetRecord(std::move(shortcut));
}

void ShortCutItem::SetRecord(Shortcut shortcut) {
  record_ = std::move(shortcut);
  int column = 0;
  for (const QString& text :
       {ToText(record_.label), ToText(record_.host), ToText(record_.path),
        record_.passive ? QCoreApplication::translate("ShortCutItem", "Passive")
                        : QCoreApplication::translate("ShortCutItem", "Active")}) {
    setText(column++, text);
  }
}

std::string ShortCutItem::ReturnUrl() const {
  return ShortcutStore::StoredForm(record_);
}

}  // namespace corvane
