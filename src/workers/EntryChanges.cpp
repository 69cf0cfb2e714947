#include "workers/EntryChanges.h"

#include <cstddef>
#include <set>
#include <utility>

#include "remote/RemotePath.h"
#include "remote/RemoteSession.h"
#include "workers/EntryCollector.h"
#include "workers/Notices.h"
#include "workers/Refusals.h"
#include "workers/TreeRemover.h"

namespace corvane {
namespace {

bool EndsAll(const Outcome& outcome) {
  return outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled;
}

}  // namespace

Outcome EntryChanges::Delete(const Message& entries, Text& verdict) {
  const std::string directory = entries.FindString("path").value_or("");
  Refusals refused;
  TreeRemover remover(session_, window_, refused, directory);
  const std::size_t count = entries.CountValues("name");
  bool open = true;
  std::size_t next = 0;
  const auto nameOf = [&](std::size_t i) { return entries.FindString("name", i).value_or(""); };
  const auto isDirectory = [&](std::size_t i) {
    return entries.FindInt32("type", i) == static_cast<std::int32_t>(RemoteEntry::Kind::Directory);
  };
  const auto tell = [&](bool deleted) {
    verdict = deleted ? Text("Deletion Success.") : Text("Deletion Failed.");
    window_.SetStatus(verdict);
    if (deleted) open = window_.RemoveEntry(nameOf(next), directory);
    ++next;
    return open && !stopped_ && !session_.IsLost();
  };
  for (bool more = true; more && next < count && !stopped_ && !session_.IsLost();) {
    std::vector<std::string> files;
    for (std::size_t i = next; i < count && !isDirectory(i); ++i) files.push_back(nameOf(i));
    if (files.empty()) {
      more = tell(remover.RemoveDirectory(nameOf(next)));
    } else {
      remover.RemoveFiles(files, [&](bool deleted) { return more = tell(deleted); });
    }
  }
  if (!open) return Outcome::Cancelled();
  if (refused.Count() == 0) return Ended({});
  return Ended(Text::WithReason(Text("The server did not delete everything:"), refused.Lines()));
}

// What was refused before a loss is told all the same.
Outcome EntryChanges::Ended(Text refused) const {
  if (!session_.IsLost() && !stopped_) return {Outcome::Kind::Done, 0, std::move(refused)};
  if (!refused.IsEmpty()) Warn(window_, refused);
  if (session_.IsLost()) return {Outcome::Kind::Lost, 0, session_.HowLost().why};
  return Outcome::Cancelled();
}

// The sizes that tell of files do not tell of directories.
Outcome EntryChanges::IsTaken(const std::string& path, bool& taken) {
  Outcome outcome = session_.Exists(path, taken);
  if (!outcome.IsDone() || taken) return outcome;
  std::string where;
  outcome = session_.Enter(path, where);
  taken = outcome.IsDone();
  return EndsAll(outcome) ? outcome : Outcome();
}

Outcome EntryChanges::MoveOne(const std::string& from, const std::string& to) {
  if (from == to) return {};
  if (to.starts_with(PathBelow(from, ""))) {
    return {Outcome::Kind::Refused, 0, Text("A directory cannot be moved into itself.")};
  }
  bool taken = false;
  if (Outcome outcome = IsTaken(to, taken); !outcome.IsDone()) return outcome;
  if (taken) return {Outcome::Kind::Refused, 0, Text("There is one of that name already.")};
  return session_.Rename(from, to);
}

Outcome EntryChanges::Move(const Message& entries) {
  const std::string directory = entries.FindString("path").value_or("");
  const std::string to = PathFrom(directory, entries.FindString("to").value_or(""));
  Refusals refused;
  const std::size_t count = entries.CountValues("name");
  for (std::size_t i = 0; i < count && !stopped_; ++i) {
    const std::string name = entries.FindString("name", i).value_or("");
    const std::string from = PathBelow(directory, name);
    const std::string target = PathBelow(to, name);
    const Outcome moved = MoveOne(from, target);
    if (EndsAll(moved)) break;
    if (!moved.IsDone()) refused.Add(name, moved.text.Reason());
    if (moved.IsDone() && from != target && !window_.RemoveEntry(name, directory)) break;
  }
  if (refused.Count() == 0) return Ended({});
  return Ended(Text::WithReason(Text("Not everything was moved to %1:", to), refused.Lines()));
}

Outcome EntryChanges::Duplicate(const Message& entry) {
  const std::string directory = entry.FindString("path").value_or("");
  const std::string from = entry.FindString("name").value_or("");
  const std::string to = entry.FindString("to").value_or("");
  const std::string target = PathBelow(directory, to);
  bool taken = false;
  if (Outcome outcome = IsTaken(target, taken); !outcome.IsDone()) return outcome;
  if (taken) {
    return {Outcome::Kind::Refused, 0,
            Text::WithReason(Text("\"%1\" was not copied.", from),
                             Text("There is one of that name already."))};
  }
  Outcome copied = session_.Copy(PathBelow(directory, from), target);
  if (!copied.IsDone()) return copied;
  const auto kind = static_cast<RemoteEntry::Kind>(entry.FindInt32("type").value_or(1));
  return Show(directory, {.name = to, .kind = kind});
}

Outcome EntryChanges::Show(const std::string& directory, RemoteEntry known) {
  RemoteEntry entry;
  Outcome outcome = session_.Stat(PathBelow(directory, known.name), entry);
  if (EndsAll(outcome)) return outcome;
  window_.UpdateEntry(outcome.IsDone() ? std::move(entry) : std::move(known), directory);
  return {};
}

// Very many are found quicker in the directory's listing.
Outcome EntryChanges::LookAt(const Message& entries) {
  constexpr std::size_t kMostAlone = 20;
  const std::string directory = entries.FindString("path").value_or("");
  const std::size_t count = entries.CountValues("name");
  if (count > kMostAlone) return ShowFromListing(directory, entries);
  for (std::size_t i = 0; i < count; ++i) {
    RemoteEntry known{.name = entries.FindString("name", i).value_or("")};
    known.kind = static_cast<RemoteEntry::Kind>(entries.FindInt32("type", i).value_or(1));
    if (known.kind == RemoteEntry::Kind::File) known.size = entries.FindInt64("size", i);
    if (Outcome outcome = Show(directory, std::move(known)); !outcome.IsDone()) return outcome;
  }
  return {};
}

Outcome EntryChanges::ShowFromListing(const std::string& directory, const Message& entries) {
  EntryCollector listing;
  Outcome outcome = session_.List(directory, listing);
  if (!outcome.IsDone()) return outcome;
  std::set<std::string> names;
  for (std::size_t i = 0; i < entries.CountValues("name"); ++i)
    names.insert(entries.FindString("name", i).value_or(""));
  for (RemoteEntry& entry : listing.entries)
    if (names.contains(entry.name)) window_.UpdateEntry(std::move(entry), directory);
  return {};
}

Outcome EntryChanges::Rename(const Message& entry) {
  const std::string directory = entry.FindString("path").value_or("");
  const std::string from = entry.FindString("original").value_or("");
  const std::string to = entry.FindString("renameto").value_or("");
  Outcome outcome = session_.Rename(PathBelow(directory, from), PathFrom(directory, to));
  if (outcome.IsDone()) window_.RenameEntry(from, to, directory);
  return outcome;
}

}  // namespace corvane
