#include "sites/ReadAtStart.h"

#include "settings/StoredSettings.h"
#include "sites/ShortcutStore.h"

namespace corvane {

std::string ReadAtStart() {
  bool converted = false;
  std::string failure = StoredSettings::ReadAtStart([&converted] {
    converted = ShortcutStore::ConvertShortcuts() != 0;
    return converted;
  });
  // A program that is killed in between finds its mark at the next start and converts nothing.
  if (converted && failure.empty()) ShortcutStore::EndConversion();
  return failure;
}

}  // namespace corvane
