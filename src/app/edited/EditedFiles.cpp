#include "app/edited/EditedFiles.h"

#include <QWidget>
#include <algorithm>
#include <utility>

#include "app/edited/EditedElsewhere.h"
#include "app/edited/EditedHost.h"
#include "app/edited/EditedWatch.h"
#include "app/shared/ScreenText.h"
#include "remote/RemotePath.h"
#include "settings/ProcessSettings.h"
#include "util/ErrorText.h"

namespace corvane {
namespace {

constexpr int kRetryEach = 60'000;  // milliseconds, once a transfer has given up

bool IsAbout(const EditedFile& file, const EditRequest& request) {
  return file.site.host == request.site.host && file.site.port == request.site.port &&
         file.site.user == request.site.user && file.remote == request.remote;
}

Site WithoutSecrets(Site site) {
  site.password.clear();
  site.proxy.reset();
  return site;
}

// As what a file of the last run is taken up; nothing where nobody waits for it any more: it is as
// it was when it was sent last, and no program has left anything beside it.
std::optional<EditedFile> LeftOf(const std::string& root, EditedFile file) {
  const std::string folder = EditedCopy::FolderOf(root, file.id, EditedCopy::Place::Here);
  const EditedCopy::Look look = EditedCopy::LookAt(PathBelow(folder, file.name));
  const bool fetched = !file.digest.empty();
  const bool same = fetched && look.error == 0 && look.digest == file.digest;
  if (fetched && !same && look.error != ENOENT) return file;
  if (!EditedCopy::HoldsMore(folder, file.name)) return std::nullopt;
  file.state = !same              ? EditedFile::State::Failed
               : file.sentAt != 0 ? EditedFile::State::Sent
                                  : EditedFile::State::Unchanged;
  if (fetched && !same)
    file.why = Text("The copy here could not be read: %1", ErrorText(look.error));
  return file;
}

}  // namespace

EditedFiles::EditedFiles(EditedHost& host, const std::string& folder, QWidget* window)
    : QObject(window),
      host_(host),
      folder_(folder),
      window_(window),
      store_(folder),
      watch_(new EditedWatch(this)),
      disk_("edited files") {
  connect(watch_, &EditedWatch::Settled, this, &EditedFiles::LookAt);
  retry_.setInterval(kRetryEach);
  connect(&retry_, &QTimer::timeout, this, &EditedFiles::TryAllNow);
}

EditedFiles::~EditedFiles() = default;

const EditedFile* EditedFiles::Find(std::int64_t id) const {
  const int row = RowOf(id);
  return row < 0 ? nullptr : &At(row);
}

int EditedFiles::RowOf(std::int64_t id) const {
  const auto place =
      std::ranges::find_if(entries_, [id](const auto& entry) { return entry->file.id == id; });
  return place == entries_.end() ? -1 : static_cast<int>(place - entries_.begin());
}

EditedFiles::Entry* EditedFiles::EntryOf(std::int64_t id) {
  const int row = RowOf(id);
  return row < 0 ? nullptr : entries_[static_cast<std::size_t>(row)].get();
}

std::string EditedFiles::PathOf(const Entry& entry, EditedCopy::Place place) const {
  return PathBelow(EditedCopy::FolderOf(folder_, entry.file.id, place), entry.file.name);
}

EditedFiles::Entry& EditedFiles::Add(EditedFile file) {
  auto entry = std::make_unique<Entry>();
  entry->file = std::move(file);
  entry->site = entry->file.site;
  entries_.push_back(std::move(entry));
  Q_EMIT Added(Count() - 1);
  return *entries_.back();
}

void EditedFiles::Set(Entry& entry, State state, const Text& why) {
  entry.file.state = state;
  entry.file.why = why;
  Q_EMIT Changed(RowOf(entry.file.id));
}

void EditedFiles::Keep(const Entry& entry) {
  store_.Keep(entry.file);
}

// Where the list is not complete, copies of which nothing is known may be all that there is of what
// was saved.
void EditedFiles::Restore() {
  EditedStore::Kept kept = store_.Load();
  for (const EditedFile& file : kept.files) next_ = std::max(next_, file.id + 1);
  for (const std::int64_t id : EditedCopy::Numbers(folder_)) next_ = std::max(next_, id + 1);
  if (folder_.empty()) return;
  disk_.Add([self = QPointer(this), folder = folder_, kept = std::move(kept)] {
    std::vector<EditedFile> files;
    std::vector<std::int64_t> gone;
    for (const EditedFile& file : kept.files) {
      if (auto left = LeftOf(folder, file)) {
        files.push_back(std::move(*left));
      } else {
        gone.push_back(file.id);
        EditedCopy::Remove(folder, file.id);
      }
    }
    if (kept.complete) {
      EditedCopy::RemoveOthers(folder, [&files](std::int64_t id) {
        return std::ranges::find(files, id, &EditedFile::id) != files.end();
      });
    }
    OnGuiThread([self, files = std::move(files), gone = std::move(gone)] {
      if (self.isNull()) return;
      for (const std::int64_t id : gone) self->store_.Remove(id);
      self->TakeUp(files);
    });
  });
}

// What was saved when the program was away is for the user to send.
void EditedFiles::TakeUp(const std::vector<EditedFile>& files) {
  bool unsent = false;
  for (const EditedFile& file : files) {
    Entry& entry = Add(file);
    entry.whole = false;
    watch_->Watch(file.id, EditedCopy::FolderOf(folder_, file.id, EditedCopy::Place::Here));
    const bool sent = file.state == State::Unchanged || file.state == State::Sent;
    if (sent) watch_->Touch(file.id);
    unsent = unsent || !sent;
  }
  if (unsent) Q_EMIT Restored();
}

void EditedFiles::Open(EditRequest request) {
  const auto same = std::ranges::find_if(
      entries_, [&request](const auto& entry) { return IsAbout(entry->file, request); });
  if (same != entries_.end()) {
    Entry& entry = **same;
    entry.site = std::move(request.site);
    entry.whole = true;
    entry.asks = false;
    entry.listener = std::move(request.listener);
    entry.file.edits = request.edits;
    entry.file.inPlace = entry.file.inPlace || request.inPlace;
    return OpenAgain(entry.file.id);
  }
  EditedFile file;
  file.id = next_++;
  file.site = WithoutSecrets(request.site);
  file.remote = std::move(request.remote);
  file.name = EditedCopy::SafeName(request.name);
  file.edits = request.edits;
  file.inPlace = request.inPlace;
  Entry& entry = Add(std::move(file));
  entry.site = std::move(request.site);
  entry.listener = std::move(request.listener);
  Keep(entry);
  Fetch(entry, Fetched::First);
}

// What holds nothing of the user's is brought up to the server's state first.
void EditedFiles::OpenAgain(std::int64_t id) {
  Entry* const entry = EntryOf(id);
  if (entry == nullptr || entry->file.state == State::Fetching) return;
  entry->launches = true;
  if (entry->file.digest.empty()) {
    Fetch(*entry, Fetched::First);
  } else if (entry->file.state == State::Unchanged || entry->file.state == State::Sent) {
    Fetch(*entry, Fetched::Again);
  } else {
    Launch(*entry);
  }
}

void EditedFiles::Launch(Entry& entry) {
  const std::string path = PathOf(entry, EditedCopy::Place::Here);
  if (entry.file.edits) {
    host_.EditFile(window_, path);
  } else {
    host_.OpenFile(window_, path);
  }
}

void EditedFiles::Stop(std::int64_t id) {
  const int row = RowOf(id);
  if (row < 0) return;
  watch_->Forget(id);
  store_.Remove(id);
  entries_.erase(entries_.begin() + row);
  using Place = EditedCopy::Place;
  for (const Place place : {Place::Sent, Place::Server})
    host_.CancelTransfers(EditedCopy::FolderOf(folder_, id, place));
  disk_.Add([folder = folder_, id] { EditedCopy::Remove(folder, id); });
  Q_EMIT Removed(row);
}

bool EditedFiles::MayBeHalfSent(std::int64_t id) const {
  const int row = RowOf(id);
  return row >= 0 && entries_[static_cast<std::size_t>(row)]->half;
}

QStringList EditedFiles::Unsent() const {
  QStringList lines;
  for (const auto& entry : entries_) {
    if (!entry->file.IsUnsent()) continue;
    lines += tr("“%1” was saved and is not sent yet; it is offered after the next start.")
                 .arg(ToText(SplitPath(entry->file.remote).second, entry->file.site.encoding));
  }
  return lines;
}

// One question after the other: nobody is asked twice for one password.
void EditedFiles::Complete(Entry& entry, const Then& go, const Then& refused) {
  if (entry.whole) return go(entry);
  pending_.push_back({entry.file.id, go, refused});
  CompleteNext();
}

void EditedFiles::CompleteNext() {
  while (!completing_ && !pending_.empty()) {
    const Pending first = pending_.front();
    pending_.erase(pending_.begin());
    Entry* const entry = EntryOf(first.id);
    if (entry == nullptr) continue;
    if (entry->whole) {
      first.go(*entry);
      continue;
    }
    completing_ = true;
    const Site kept = entry->file.site;
    Site asked = kept;
    if (entry->asks) asked.asksPassword = true;
    host_.CompleteSite(window_, asked,
                       [self = QPointer(this), first, kept](const std::optional<Site>& whole) {
                         if (!self.isNull()) self->Completed(first, kept, whole);
                       });
  }
}

void EditedFiles::Completed(const Pending& asked, const Site& kept,
                            const std::optional<Site>& whole) {
  completing_ = false;
  for (const auto& entry : entries_) {
    if (!whole || entry->whole || entry->file.site != kept) continue;
    entry->site = *whole;
    entry->whole = true;
    entry->asks = false;
  }
  std::vector<Pending> settled{asked};
  if (!whole) {
    std::erase_if(pending_, [&](const Pending& each) {
      const Entry* entry = EntryOf(each.id);
      const bool same = entry != nullptr && entry->file.site == kept;
      if (same) settled.push_back(each);
      return same;
    });
  }
  for (const Pending& each : settled) {
    if (Entry* const entry = EntryOf(each.id)) (whole ? each.go : each.refused)(*entry);
  }
  CompleteNext();
}

// A password that the server refuses is not tried again: not for this file, nor for another one.
void EditedFiles::LoginRefused(const Site& kept) {
  for (const auto& entry : entries_) {
    if (entry->file.site != kept) continue;
    entry->whole = false;
    entry->asks = true;
  }
}

transferStruct EditedFiles::Described(const Entry& entry) const {
  const SettingsValues settings = ProcessSettings::Get();
  transferStruct what;
  what.site = entry.site;
  what.remoteDirectory = SplitPath(entry.file.remote).first;
  what.bufferSize = settings.buffersize;
  what.checks = settings.compareChecksums;
  what.usesPartNames = settings.partNames && !entry.file.inPlace;
  what.connections = 1;
  what.tracked = true;
  return what;
}

TransferListener EditedFiles::Listener(Entry& entry,
                                       std::function<void(Entry&, RowState, const Text&)> stands) {
  entry.transfer = ++transfers_;
  entry.conflict = false;
  entry.hadAgain = false;
  entry.retries = false;
  entry.told.reset();
  const auto find = [self = QPointer(this), id = entry.file.id, number = transfers_]() -> Entry* {
    Entry* const found = self.isNull() ? nullptr : self->EntryOf(id);
    return found != nullptr && found->transfer == number ? found : nullptr;
  };
  TransferListener listener = entry.listener;
  listener.quiet = true;
  listener.versioned = [find](const Message& message) {
    Entry* const found = find();
    if (found == nullptr) return;
    found->conflict = message.FindBool("changed").value_or(false);
    (found->conflict ? found->file.found : found->told.emplace()) = VersionIn(message);
  };
  listener.loginRefused = [this, find] {
    if (Entry* const found = find()) LoginRefused(found->file.site);
  };
  listener.restated = [find, stands = std::move(stands)](RowState state, const Text& why) {
    if (Entry* const found = find()) stands(*found, state, why);
  };
  return listener;
}

}  // namespace corvane
