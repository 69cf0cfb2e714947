#include <QDateTime>
#include <cerrno>
#include <utility>

#include "app/edited/EditedElsewhere.h"
#include "app/edited/EditedHost.h"
#include "app/edited/EditedWatch.h"
#include "remote/RemotePath.h"
#include "util/ErrorText.h"
#include "util/FreeNames.h"

namespace corvane {

using Place = EditedCopy::Place;

void EditedFiles::LookAt(std::int64_t id) {
  Entry* const entry = EntryOf(id);
  if (entry == nullptr) return;
  const bool busy = entry->file.state == State::Fetching || entry->file.state == State::Sending;
  if (busy || entry->looking) {
    entry->lookAgain = true;
    return;
  }
  entry->looking = true;
  Elsewhere(
      *entry, [path = PathOf(*entry, Place::Here)] { return EditedCopy::LookAt(path); },
      [this](Entry& found, const EditedCopy::Look& look) { Looked(found, look); });
}

// A program that saves by renaming may leave no file for a moment.
void EditedFiles::Looked(Entry& entry, const EditedCopy::Look& look) {
  entry.looking = false;
  if (std::exchange(entry.lookAgain, false) || look.error == EAGAIN) watch_->Touch(entry.file.id);
  if (look.error == ENOENT || look.error == EAGAIN) return;
  const State state = entry.file.state;
  if (state == State::Fetching || state == State::Sending) return watch_->Touch(entry.file.id);
  if (look.error != 0) {
    return Set(entry, State::Failed,
               Text("The copy here could not be read: %1", ErrorText(look.error)));
  }
  if (look.digest == entry.file.digest) {
    if (entry.file.IsUnsent()) Set(entry, State::Unchanged);
    return;
  }
  // A conflict is the user's to settle, and a transfer that waits sends what is there then.
  if (state == State::Conflict || (state == State::Waiting && !entry.retries)) return;
  Send(entry);
}

void EditedFiles::Send(Entry& entry) {
  Set(entry, State::Sending);
  const auto take = [this](Entry& whole) {
    const std::string folder = EditedCopy::FolderOf(folder_, whole.file.id, Place::Sent);
    Elsewhere(
        whole,
        [folder, from = PathOf(whole, Place::Here), to = PathOf(whole, Place::Sent)] {
          const int error = EditedCopy::MakeFolder(folder);
          return error != 0 ? EditedCopy::Look{.error = error} : EditedCopy::Take(from, to);
        },
        [this](Entry& found, const EditedCopy::Look& taken) { BeginSend(found, taken); });
  };
  Complete(entry, take, [this](Entry& refused) { Set(refused, State::Changed); });
}

// What is sent is a copy of one state of the file, whatever is saved meanwhile.
void EditedFiles::BeginSend(Entry& entry, const EditedCopy::Look& taken) {
  if (taken.error == EAGAIN) {
    Set(entry, State::Changed);
    return watch_->Touch(entry.file.id);
  }
  if (taken.error != 0) {
    Set(entry, State::Failed,
        Text("No copy could be made for sending: %1", ErrorText(taken.error)));
    Q_EMIT NeedsUser(entry.file.id);
    return;
  }
  const bool again = std::exchange(entry.lookAgain, false);
  if (taken.digest == entry.file.digest && entry.beside.empty() && entry.file.version.there) {
    if (again) watch_->Touch(entry.file.id);
    return Set(entry, State::Unchanged);
  }
  entry.digest = taken.digest;
  entry.file.saved = {.size = taken.size, .modified = taken.modified};
  transferStruct what = Described(entry);
  what.download = false;
  what.targetFolder = EditedCopy::FolderOf(folder_, entry.file.id, Place::Sent);
  what.expected = entry.beside.empty() ? entry.file.version : FileVersion{.there = false};
  const bool there = what.expected->there;
  entry.direct = there && !what.usesPartNames;
  what.size = taken.size;
  what.jobs.push_back({.remote = entry.beside.empty() ? entry.file.remote : entry.beside,
                       .local = PathOf(entry, Place::Sent),
                       .size = taken.size,
                       .policy = there ? Policy::Replace : Policy::CreateNew,
                       .there = there});
  host_.Transfer(std::move(what),
                 Listener(entry, [this](Entry& told, RowState state, const Text& why) {
                   SendEnded(told, state, why);
                 }));
}

void EditedFiles::SendEnded(Entry& entry, RowState state, const Text& why) {
  switch (state) {
    case RowState::Running: entry.half = entry.half || entry.direct; [[fallthrough]];
    case RowState::Waiting: return Set(entry, State::Sending);
    case RowState::Paused: return Set(entry, State::Waiting, Text("Paused."));
    case RowState::Again: entry.hadAgain = true; return Set(entry, State::Waiting, why);
    case RowState::Cancelled: return Set(entry, State::Changed);
    case RowState::Failed:
      if (entry.conflict) entry.half = false;
      if (entry.conflict) return entry.beside.empty() ? TellConflict(entry) : SendBeside(entry);
      entry.retries = entry.hadAgain;
      if (entry.retries) {
        retry_.start();
        return Set(entry, State::Waiting, why);
      }
      entry.beside.clear();
      Set(entry, State::Failed, why);
      Q_EMIT NeedsUser(entry.file.id);
      return;
    case RowState::Done: break;
  }
  EditedFile& file = entry.file;
  if (!entry.beside.empty()) file.remote = std::exchange(entry.beside, {});
  entry.half = false;
  file.digest = entry.digest;
  file.version = entry.told.value_or(FileVersion{});
  file.sentAt = QDateTime::currentSecsSinceEpoch();
  Keep(entry);
  Set(entry, State::Sent);
  // Saved meanwhile, it is sent once more.
  watch_->Touch(file.id);
}

void EditedFiles::TellConflict(Entry& entry) {
  Set(entry, State::Conflict);
  Q_EMIT NeedsUser(entry.file.id);
}

void EditedFiles::SendNow(std::int64_t id) {
  Entry* const entry = EntryOf(id);
  if (entry == nullptr || !entry->file.IsUnsent()) return;
  switch (entry->file.state) {
    case State::Conflict: Q_EMIT NeedsUser(id); break;
    case State::Waiting:
      if (!entry->retries) return host_.TryTransfersNow();
      [[fallthrough]];
    case State::Changed:
    case State::Failed: Send(*entry); break;
    default: break;
  }
}

void EditedFiles::TryAllNow() {
  retry_.stop();
  std::vector<std::int64_t> waiting;
  for (const auto& entry : entries_)
    if (entry->file.state == State::Waiting && entry->retries) waiting.push_back(entry->file.id);
  for (const std::int64_t id : waiting) SendNow(id);
}

void EditedFiles::Settle(std::int64_t id, Choice choice) {
  Entry* const entry = EntryOf(id);
  if (entry == nullptr || entry->file.state != State::Conflict) return;
  switch (choice) {
    case Choice::KeepBoth:
      entry->names = 0;
      SendBeside(*entry);
      break;
    case Choice::KeepMine:
      entry->file.version = entry->file.found;
      Keep(*entry);
      Send(*entry);
      break;
    case Choice::TakeTheirs: Fetch(*entry, Fetched::Taken); break;
  }
}

// Which names are free shows only when one is tried.
void EditedFiles::SendBeside(Entry& entry) {
  constexpr int kMostNames = 50;
  const auto [directory, name] = SplitPath(entry.file.remote);
  if (++entry.names > kMostNames) {
    entry.beside.clear();
    return TellConflict(entry);
  }
  FreeNames names;
  names.Take(name);
  std::string free;
  for (int i = 0; i < entry.names; ++i) free = names.Next(name, false);
  entry.beside = PathBelow(directory, free);
  Send(entry);
}

}  // namespace corvane
