#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Text.h"
#include "sites/Shortcut.h"
#include "sites/ShortcutFolders.h"

namespace corvane {

/// The saved connections on the disk: the set "shortcuts", entries numbered from 0. GUI thread.
///
/// An entry is a line of text, which holds the password where that is kept nowhere else, and beside
/// it, where there is something to say, what the line has no place for.
///
/// Reading ends at the first entry that is missing or is no saved connection. Writers return why
/// something could not be stored, an empty text when it was.
class ShortcutStore {
 public:
  /// The stored line, which ParseUrl reads. Nothing is escaped.
  [[nodiscard]] static std::string StoredForm(const Shortcut& shortcut);
  /// What ParseUrl gets back from a stored form.
  enum class Return {
    Whole,    ///< all of it; the password of an anonymous login may suffer
    Changed,  ///< a connection, but another one
    Nothing,  ///< no connection: the walk over the entries would end there
  };
  [[nodiscard]] static Return ComesBack(const Shortcut& shortcut);

  struct List {
    std::vector<Shortcut> shortcuts{};
    Text failure{};                         ///< why the store could not be read; empty when it was
    std::vector<ShortcutFolder> folders{};  ///< all of them, each behind those around it
  };
  /// All entries, in order. A store that was never written gets its first entry; one that cannot be
  /// read now is left as it is.
  [[nodiscard]] static List ReadForMenu();
  /// Whether these are what such a store begins with.
  [[nodiscard]] static bool AreTheFirst(const std::vector<Shortcut>& shortcuts);
  /// All entries, in order.
  [[nodiscard]] static List ReadForList();
  /// How many entries are stored behind the end of the reading, the one that ends it included:
  /// saving a list loses them.
  [[nodiscard]] static std::int32_t CountOutOfReach();
  /// The entry of that number.
  [[nodiscard]] static std::optional<Shortcut> Read(std::int32_t index);

  /// Gives `site` the password that stands with a shortcut to the same place as the same user;
  /// without such a one it stays as it is.
  static void FillPassword(Site& site);

  struct Added {
    std::int32_t index = -1;
    Text failure{};
    bool within = false;  ///< in a gap: the entries behind it are in reach again
  };
  /// Stores one more entry, at the end or where reading ends before; an entry there that is no
  /// connection moves to the end. A store that was never written takes none.
  [[nodiscard]] static Added Add(const Shortcut& shortcut);
  /// Stores the whole list and its folders, in one piece. Entries beyond its end stay on the disk,
  /// out of reach, without a password that is kept for their login; an empty list leaves the first
  /// entry in reach.
  [[nodiscard]] static Text SaveAll(const std::vector<Shortcut>& shortcuts,
                                    const std::vector<ShortcutFolder>& folders = {});
  /// Keeps which of the stored folders are open; those of `seen` that are not stored stay out.
  static void KeepOpen(const std::vector<ShortcutFolder>& seen);

  /// Takes the password out of every line that holds it, those out of reach included: the secret
  /// store keeps it from now on. Returns why that could not be stored.
  [[nodiscard]] static Text TakeOutPassword(const Site& kept);

  /// Puts the flag of an active connection before each entry: the older form had none. Returns -1
  /// when there is no list, 0 when it could not be stored, else 1. Until EndConversion a second
  /// call changes nothing, in whatever process.
  static std::int32_t ConvertShortcuts();
  /// To be called once the settings are stored with the version that says that all is converted.
  static void EndConversion();
};

}  // namespace corvane
