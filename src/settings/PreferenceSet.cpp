#include "settings/PreferenceSet.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include "prefs/PrefPaths.h"
#include "util/ErrorText.h"

namespace corvane {

std::string PathBesideSets(const std::string& name, bool make) {
  const std::string base = BaseDirectory(true);
  if (base.empty()) return "";
  std::string path = SetDirectory(base, kApplication, true) + "/" + name;
  // Who opens the file learns what is wrong.
  if (make) (void)MakeDirectories(base, path, true);
  return path;
}

PreferenceSet::PreferenceSet(const char* name, Saving saving) : saving_(saving) {
  Note(PREFInit(kApplication, &app_));
  if (app_ == nullptr) return;
  const PREFStatus loaded = PREFLoadSet(app_, name, true, &set_);
  Note(loaded);
  damaged_ = loaded == -ENOMEM;
  if (set_ == nullptr) return;
  if (saving_ == Saving::AtOnce) {
    // A file that was cut short has loaded as an empty set; only reading it again tells.
    const Message* items = PREFGetMessage(set_);
    if (items != nullptr && items->Names().empty()) Reload();
    return;
  }
  // What another program saved since the load is kept.
  const PREFStatus begun = PREFBeginTransaction(set_, &transaction_);
  Note(begun);
  if (begun == 0) Reload();
}

// A file that was made just now has nothing to read, which is no failure.
void PreferenceSet::Reload() {
  if (PREFReloadSet(set_) != -EIO) return;
  Note(-EIO);
  damaged_ = true;
}

PreferenceSet::~PreferenceSet() {
  if (unsaved_) Write();
  if (transaction_ != nullptr) PREFEndTransaction(transaction_);
  if (set_ != nullptr) PREFDisposeSet(&set_);
  if (app_ != nullptr) PREFShutdown(app_);
}

void PreferenceSet::Note(PREFStatus status) {
  if (failure_ == 0) failure_ = status;
}

void PreferenceSet::Save() {
  unsaved_ = true;
  if (saving_ == Saving::AtOnce) Write();
}

void PreferenceSet::Write() {
  unsaved_ = false;
  // Who waited for the file in vain does not wait a second time.
  const bool refused = saving_ == Saving::Gathered && transaction_ == nullptr;
  // What is damaged stays as it is, for the user to look at.
  const PREFStatus saved = refused ? -EBUSY : damaged_ ? -EIO : PREFSaveSet(set_);
  Note(saved);
  if (saved != 0) std::puts("Cannot save settings");
}

Text PreferenceSet::Finish() {
  if (unsaved_) Write();
  if (failure_ == 0) return {};
  if (damaged_) return Text("The file is damaged. Move it away to begin with a new one.");
  if (failure_ == -EBUSY) return Text("Another program holds the file.");
  if (failure_ == kPrefPathTooLong) return Text("The path of the file is too long.");
  return failure_ > kPrefInUse ? Text::Raw(ErrorText(-failure_))
                               : Text("The preference store failed.");
}

}  // namespace corvane
