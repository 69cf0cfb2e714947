#include "sites/ReadAtStart.h"

#include "settings/StoredSettings.h"
#include "sites/ShortcutStore.h"

namespace corvane {

Text ReadAtStart() {
  bool converted = false;
  Text failure = StoredSettings::ReadAtStart([&converted] {
    converted = ShortcutStore::ConvertShortcuts() != 0;
    return converted;
  });
  // A program that is killed in between finds its mark at the next start and converts nothing.
  if (converted && failure.IsEmpty()) ShortcutStore::EndConversion();
  return failure;
}

}  // namespace corvane
