#pragma once

#include <string>

#include "kit/Text.h"
#include "prefs/PREF.h"

namespace corvane {

/// Under which the program's sets stand in the store.
inline constexpr const char* kApplication = "x-ovak-Corvane";

/// Where a file of the program's own stands beside this user's sets; "" where the environment names
/// no folder for them. With `make` that folder is made where it is missing.
[[nodiscard]] std::string PathBesideSets(const std::string& name, bool make = false);

/// One of the program's preference sets, opened for one use. Not locked.
class PreferenceSet {
 public:
  enum class Saving {
    AtOnce,    ///< every Save writes the file
    Gathered,  ///< the file is held against other processes, and written once at the end
  };

  /// Opens the set `name` of this user. One that cannot be loaded reads as empty and is not saved.
  explicit PreferenceSet(const char* name, Saving saving = Saving::AtOnce);
  /// Writes what was gathered.
  ~PreferenceSet();
  PreferenceSet(const PreferenceSet&) = delete;
  PreferenceSet& operator=(const PreferenceSet&) = delete;

  /// Null when the set could not be loaded; the store's functions then return failures.
  [[nodiscard]] PREFSet* Handle() const { return set_; }

  /// Saves the set, now or at the end; prints "Cannot save settings" on failure.
  void Save();
  /// Writes what was gathered. Returns why something could not be stored, for the user; an empty
  /// text when all is on the disk.
  Text Finish();
  /// Notes a status of the store; the first failure stays.
  void Note(PREFStatus status);

 private:
  void Reload();
  void Write();

  const Saving saving_;
  PREFApp* app_ = nullptr;
  PREFSet* set_ = nullptr;
  PREFTransaction* transaction_ = nullptr;
  PREFStatus failure_ = 0;
  bool damaged_ = false;
  bool unsaved_ = false;
};

}  // namespace corvane
