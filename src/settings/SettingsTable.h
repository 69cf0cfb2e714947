#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>

#include "settings/ProcessSettings.h"

namespace corvane {

/// The tabs of the preferences window.
enum class SettingsTab { None, Misc, Sound, Proxy, Connections, Transfers, Security };

/// One value of a number that the user picks from a list.
struct SettingsChoice {
  std::int32_t value;
  const char* label;
};

/// Between what a number lies. With a `most` of 0 any number does.
struct SettingsRange {
  std::int32_t least = 0;
  std::int32_t most = 0;
  const char* unit = "";       ///< behind the number
  const char* leastText = "";  ///< in place of the least number
};

/// One setting: reading, storing and the preferences window follow these rows. Its type is that of
/// its variable, its default what the variable holds in a new SettingsValues. Texts for the screen
/// are English, of the catalogue's context "corvane::PrefWindow".
struct Setting {
  using Variable = std::variant<std::string SettingsValues::*, bool SettingsValues::*,
                                std::int32_t SettingsValues::*>;

  const char* key;  ///< in the stored set
  Variable variable;
  SettingsTab tab = SettingsTab::None;  ///< None: not shown, and never written
  const char* control = "";             ///< the object name of its field, box or list
  const char* label = "";
  const char* hint = "";        ///< below the pointer, or in an empty field
  bool hintBelow = false;       ///< the hint stands below it, always seen
  bool opensGroup = false;      ///< a line parts it from those before
  const char* heading = "";     ///< of the group that it opens
  const char* emptied = "";     ///< a text in force where the user has left the field empty
  bool storesEmptied = true;    ///< whether that text is stored as well, or the empty one
  const char* readsEmpty = "";  ///< a text in force where an empty one was stored
  bool atNextStart = false;     ///< a change is stored and comes into force with the next start
  std::span<const SettingsChoice> choices{};  ///< of a number, ascending
  bool asButtons = false;  ///< the choices stand side by side, without a label, not in a list
  bool secret = false;     ///< the text is not shown
  SettingsRange range{};   ///< of a number that is typed
  bool follows = false;    ///< it stands in the row of the one before, behind its label
};

/// All settings, in the order in which they are shown and stored.
[[nodiscard]] std::span<const Setting> AllSettings();

}  // namespace corvane
