#include <cerrno>
#include <utility>

#include "app/edited/EditedElsewhere.h"
#include "app/edited/EditedHost.h"
#include "app/edited/EditedWatch.h"
#include "remote/RemotePath.h"
#include "util/ErrorText.h"

namespace corvane {

using Place = EditedCopy::Place;

void EditedFiles::Fetch(Entry& entry, Fetched purpose) {
  if (purpose != Fetched::Compared) Set(entry, State::Fetching);
  Complete(
      entry, [this, purpose](Entry& whole) { BeginFetch(whole, purpose); },
      [this, purpose](Entry& refused) { FetchFailed(refused, purpose, Text("No password.")); });
}

// What comes stands beside the copy until it is whole and it is clear what becomes of the copy.
void EditedFiles::BeginFetch(Entry& entry, Fetched purpose) {
  const std::string folder = EditedCopy::FolderOf(folder_, entry.file.id, Place::Server);
  const std::string here = EditedCopy::FolderOf(folder_, entry.file.id, Place::Here);
  Elsewhere(
      entry,
      [folder, here, nowhere = folder_.empty()] {
        const int error = nowhere ? ENOENT : EditedCopy::MakeFolder(here);
        return error != 0 ? error : EditedCopy::MakeFolder(folder);
      },
      [this, purpose, folder](Entry& found, int error) {
        if (error != 0) {
          return FetchFailed(found, purpose,
                             Text("Could not make the folder: %1", ErrorText(error)));
        }
        transferStruct what = Described(found);
        what.targetFolder = folder;
        what.jobs.push_back({.remote = found.file.remote,
                             .local = PathBelow(folder, found.file.name),
                             .policy = Policy::Replace});
        host_.Transfer(std::move(what), Listener(found, [this, purpose](Entry& told, RowState state,
                                                                        const Text& why) {
                         FetchEnded(told, purpose, state, why);
                       }));
      });
}

// Who opens a copy again does not wait for a server that is away.
void EditedFiles::FetchEnded(Entry& entry, Fetched purpose, RowState state, const Text& why) {
  switch (state) {
    case RowState::Done: return PutInPlace(entry, purpose);
    case RowState::Failed:
    case RowState::Cancelled: return FetchFailed(entry, purpose, why);
    case RowState::Again:
    case RowState::Paused:
      if (purpose != Fetched::First) return FetchFailed(entry, purpose, why);
      return Set(entry, State::Fetching, why);
    case RowState::Waiting:
    case RowState::Running: break;
  }
  if (purpose != Fetched::Compared) Set(entry, State::Fetching);
}

void EditedFiles::FetchFailed(Entry& entry, Fetched purpose, const Text& why) {
  entry.transfer = 0;
  if (std::exchange(entry.lookAgain, false)) watch_->Touch(entry.file.id);
  switch (purpose) {
    case Fetched::First:
      Set(entry, State::Failed, why);
      Q_EMIT NeedsUser(entry.file.id);
      break;
    case Fetched::Again:
      Set(entry, entry.file.sentAt != 0 ? State::Sent : State::Unchanged);
      Launch(entry);
      break;
    case Fetched::Taken:
    case Fetched::Compared:
      Set(entry, State::Conflict, why);
      Q_EMIT NeedsUser(entry.file.id);
      break;
  }
}

// A copy that is just being saved, or cannot be read, is not replaced unasked. The user who takes
// the server's file gives up the state of the copy that was to be sent, and no later one.
bool EditedFiles::IsTouched(Fetched purpose, const EditedCopy::Look& copy, const std::string& base,
                            const std::string& given) {
  if (purpose == Fetched::First) return false;
  if (copy.error != 0) return copy.error != ENOENT;
  return copy.digest != base && (purpose != Fetched::Taken || copy.digest != given);
}

void EditedFiles::PutInPlace(Entry& entry, Fetched purpose) {
  const auto place = [theirs = PathOf(entry, Place::Server), mine = PathOf(entry, Place::Here),
                      base = entry.file.digest, given = entry.digest, purpose] {
    const EditedCopy::Look fetched = EditedCopy::LookAt(theirs);
    Placed placed;
    placed.error = fetched.error;
    placed.digest = fetched.digest;
    if (placed.error != 0 || purpose == Fetched::Compared) return placed;
    placed.copy = EditedCopy::LookAt(mine);
    const bool same = placed.copy.error == 0 && placed.copy.digest == fetched.digest;
    placed.touched = !same && IsTouched(purpose, placed.copy, base, given);
    if (!placed.touched && !same) placed.error = EditedCopy::Move(theirs, mine);
    return placed;
  };
  Elsewhere(entry, place, [this, purpose](Entry& found, const Placed& placed) {
    Arrived(found, purpose, placed);
  });
}

void EditedFiles::Arrived(Entry& entry, Fetched purpose, const Placed& placed) {
  const FileVersion version = entry.told.value_or(FileVersion{});
  if (placed.error != 0) {
    return FetchFailed(entry, purpose,
                       Text("Could not write the file: %1", ErrorText(placed.error)));
  }
  if (purpose == Fetched::Compared) {
    entry.file.found = version;
    const auto compare = std::exchange(entry.compare, {});
    if (compare) compare(PathOf(entry, Place::Here), PathOf(entry, Place::Server));
    return;
  }
  if (std::exchange(entry.lookAgain, false)) watch_->Touch(entry.file.id);
  if (placed.touched && purpose == Fetched::Taken) {
    if (placed.copy.error == 0) entry.digest = placed.copy.digest;
    entry.file.saved = {.size = placed.copy.size, .modified = placed.copy.modified};
    entry.file.found = version;
    return FetchFailed(entry, purpose, Text("The copy here has been saved once more meanwhile."));
  }
  if (!placed.touched) {
    const bool same = placed.digest == entry.file.digest && entry.file.sentAt != 0;
    entry.file.digest = placed.digest;
    entry.file.version = version;
    Keep(entry);
    Set(entry, same ? State::Sent : State::Unchanged);
  } else {
    Set(entry, State::Changed);
    watch_->Touch(entry.file.id);
  }
  if (purpose == Fetched::First)
    watch_->Watch(entry.file.id, EditedCopy::FolderOf(folder_, entry.file.id, Place::Here));
  if (purpose != Fetched::Taken && std::exchange(entry.launches, false)) Launch(entry);
}

void EditedFiles::FetchTheirs(
    std::int64_t id, std::function<void(const std::string& mine, const std::string& theirs)> then) {
  Entry* const entry = EntryOf(id);
  if (entry == nullptr) return;
  entry->compare = std::move(then);
  Fetch(*entry, Fetched::Compared);
}

}  // namespace corvane
