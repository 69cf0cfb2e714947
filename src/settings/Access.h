#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kit/Rect.h"
#include "settings/PreferenceSet.h"

namespace corvane {

/// Typed access to the items of a preference set. Readers return the default when the item is
/// missing or of another type. Writers that fail print what they could not do and go on; why is
/// told by PreferenceSet::Finish.

/// Stores an integer, without saving the set.
void SaveInt32(PreferenceSet& set, const char* name, std::int32_t value);
[[nodiscard]] std::int32_t GetInt32(const PreferenceSet& set, const char* name,
                                    std::int32_t fallback);

/// Stores a text, and saves the set.
void SaveString(PreferenceSet& set, const char* name, std::string_view text);
[[nodiscard]] std::string GetString(const PreferenceSet& set, const char* name,
                                    std::string_view fallback);

/// Stores a window's frame, without saving the set.
void SaveWindowSetting(PreferenceSet& set, const char* name, const Rect& frame);
[[nodiscard]] Rect GetWindowSetting(const PreferenceSet& set, const char* name,
                                    const Rect& fallback);

}  // namespace corvane
