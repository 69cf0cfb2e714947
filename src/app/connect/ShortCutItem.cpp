#include "app/connect/ShortCutItem.h"

#include <QCoreApplication>
#include <utility>

#include "app/shared/ScreenText.h"
#include "sites/ShortcutStore.h"

namespace corvane {

namespace {

// Longer than anybody reads; a text of a megabyte would hold the list up.
constexpr std::size_t kShown = 1000;

int NextId() {
  static int last = 0;
  return ++last;
}

QString Cell(const std::string& text) {
  return ToText(std::string_view(text).substr(0, kShown));
}

}  // namespace

ShortCutItem::ShortCutItem(Shortcut shortcut) : id_(NextId()) {
  SetRecord(std::move(shortcut));
}

void ShortCutItem::SetRecord(Shortcut shortcut) {
  record_ = std::move(shortcut);
  setText(0, Cell(record_.label));
  setText(1, Cell(record_.site.host));
  setText(2, Cell(record_.site.path));
  setText(3, record_.site.passive ? QCoreApplication::translate("ShortCutItem", "Passive")
                                  : QCoreApplication::translate("ShortCutItem", "Active"));
}

std::string ShortCutItem::ReturnUrl() const {
  return ShortcutStore::StoredForm(record_);
}

}  // namespace corvane
