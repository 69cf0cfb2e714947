#include "app/connect/ShortCutItem.h"

#include <QCoreApplication>
#include <QKeySequence>
#include <utility>

#include "app/connect/FolderItem.h"
#include "app/shared/EncryptionField.h"
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

ShortCutItem::ShortCutItem(Shortcut shortcut) : QTreeWidgetItem(kType), id_(NextId()) {
  setFlags(flags() & ~Qt::ItemIsDropEnabled);
  SetStored(std::move(shortcut));
}

ShortCutItem* ShortCutItem::Of(QTreeWidgetItem* item) {
  return item != nullptr && item->type() == kType ? static_cast<ShortCutItem*>(item) : nullptr;
}

bool ShortCutItem::operator<(const QTreeWidgetItem& other) const {
  return StandsBefore(*this, other);
}

void ShortCutItem::SetStored(Shortcut shortcut) {
  keptAs_.reset();
  if (shortcut.site.keptPassword) keptAs_ = KeyOf(shortcut.site);
  SetRecord(std::move(shortcut));
}

void ShortCutItem::SetRecord(Shortcut shortcut) {
  record_ = std::move(shortcut);
  setText(kLabel, Cell(record_.label));
  setText(kHost, Cell(record_.site.host));
  const bool anonymous = record_.site.user.empty();
  setText(kUser, anonymous ? QStringLiteral("anonymous") : Cell(record_.site.user));
  setText(kPath, Cell(record_.site.path));
  setText(kMode, record_.site.passive ? QCoreApplication::translate("ShortCutItem", "Passive")
                                      : QCoreApplication::translate("ShortCutItem", "Active"));
  const Security security = record_.site.security;
  setText(kEncryption, EncryptionField::ShortText(security));
  setData(kEncryption, kWarning,
          security == Security::Plain ? QStringLiteral("lock-open") : QString());
}

void ShortCutItem::ShowKey(int number) {
  constexpr int kKeys = 10;
  const QKeySequence key(QStringLiteral("Ctrl+%1").arg(number));
  setText(kKey, number < kKeys ? key.toString(QKeySequence::NativeText) : QString());
}

std::string ShortCutItem::ReturnUrl() const {
  return ShortcutStore::StoredForm(record_);
}

}  // namespace corvane
