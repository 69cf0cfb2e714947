// Any file is either read whole or refused, and what has been read comes back from a written file.
#include <cstdlib>

#include "sites/ShortcutImport.h"
#include "sites/ShortcutLines.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  ShortcutImport import = ShortcutImport::Read({reinterpret_cast<const char*>(data), size});
  if (!import.failure.IsEmpty() && !import.entries.empty()) std::abort();
  import.FitToStore(true);
  std::vector<Shortcut> taken;
  for (const ImportedShortcut& entry : import.entries) {
    if (entry.refusal.IsEmpty()) taken.push_back(entry.shortcut);
  }
  import.MarkKnown(taken);
  const auto again = ShortcutImport::Read(WrittenShortcuts(taken, import.folders, true));
  if (again.entries.size() != taken.size() || again.folders != import.folders) std::abort();
  for (std::size_t i = 0; i < taken.size(); ++i) {
    if (again.entries[i].shortcut != taken[i]) std::abort();
  }
  return 0;
}
