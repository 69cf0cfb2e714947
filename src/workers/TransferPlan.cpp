#include "workers/TransferPlan.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "util/FreeNames.h"
#include "util/LocalFolder.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Entry = TransferPlan::Entry;
using Facts = TransferPlan::Facts;
using There = TransferPlan::There;

There WhatIsThere(const Entry& entry, const Facts& facts) {
  using enum TransferPlan::There;
  if (facts.kind == Kind::Directory) return Folder;
  if (facts.kind == Kind::Link) return Link;
  if (facts.kind != Kind::File || entry.kind == Kind::Directory) return Other;
  if (entry.size < 0 || facts.size < entry.size) return Shorter;
  return facts.size == entry.size ? SameSize : Longer;
}

void Meet(Entry& entry, const Facts& facts) {
  entry.there = WhatIsThere(entry, facts);
  entry.sizeThere = facts.size;
  entry.modifiedThere = facts.modified;
}

Facts FactsOf(const struct stat& status) {
  Facts facts{.kind = Kind::Device,
              .modified = RemoteTime{status.st_mtime, RemoteTime::Precision::Second, true}};
  if (S_ISDIR(status.st_mode)) facts.kind = Kind::Directory;
  if (S_ISLNK(status.st_mode)) facts.kind = Kind::Link;
  if (S_ISREG(status.st_mode)) facts.kind = Kind::File;
  if (facts.kind == Kind::File) facts.size = status.st_size;
  return facts;
}

/// Learns of the local file or folder that an upload takes.
void LookAtSource(Entry& entry) {
  struct stat status {};
  if (::stat(entry.name.c_str(), &status) != 0) return;
  const Facts facts = FactsOf(status);
  entry.kind = facts.kind;
  entry.size = facts.size;
  entry.modified = facts.modified;
}

/// When something was changed, in seconds since 1970: not before `first` and not after `last`.
struct Span {
  std::int64_t first;
  std::int64_t last;
};

// A server that tells no zone may be in any, from 12 hours behind UTC to 14 hours before it.
Span SpanOf(const RemoteTime& time) {
  constexpr std::int64_t kHour = 3600;
  constexpr std::int64_t kMostBehind = 12 * kHour;
  constexpr std::int64_t kMostBefore = 14 * kHour;
  Span span{time.seconds, time.seconds};
  if (!time.utc) span = {span.first - kMostBefore, span.last + kMostBehind};
  if (time.precision == RemoteTime::Precision::Minute) span.last += 59;
  if (time.precision == RemoteTime::Precision::Day) span.last += 24 * kHour - 1;
  return span;
}

/// Entries that would get what another one gets.
using Clashing = std::vector<Entry*>;

/// Gives each of those a name of its own, and a free one to each that meets something.
void GiveNames(std::vector<Entry>& entries, const Clashing& clashing, FreeNames& taken) {
  for (const Entry& entry : entries) taken.Take(entry.local);
  for (Entry* entry : clashing) {
    entry->local = taken.Next(entry->local, entry->kind == Kind::Directory);
    entry->there = There::Nothing;
  }
  for (Entry& entry : entries) {
    if (entry.there == There::Nothing || entry.IsMerged()) continue;
    entry.freeName = taken.Next(entry.local, entry.kind == Kind::Directory);
  }
}

}  // namespace

bool TransferPlan::Entry::IsMerged() const {
  return there == There::Folder && kind == Kind::Directory;
}

bool TransferPlan::Entry::IsReplaceable() const {
  return IsMerged() || there == There::SameSize || there == There::Shorter ||
         there == There::Longer;
}

// File systems keep times to two seconds at worst.
TransferPlan::Age TransferPlan::Entry::AgeToThere() const {
  constexpr std::int64_t kRounding = 1;
  if (!modified || !modifiedThere) return Age::Unknown;
  const Span own = SpanOf(*modified);
  const Span other = SpanOf(*modifiedThere);
  if (own.first > other.last + kRounding) return Age::Newer;
  if (other.first > own.last + kRounding) return Age::Older;
  const bool exact = own.first == own.last && other.first == other.last;
  return exact ? Age::Same : Age::Unknown;
}

void TransferPlan::Entry::Settle(Policy chosen) {
  policy = Policy::CreateNew;
  if (IsMerged()) {
    policy = chosen;
  } else if (chosen == Policy::KeepBoth) {
    local = freeName;
  } else if (!IsReplaceable()) {
    leftOut = chosen == Policy::Skip;
  } else if (chosen == Policy::Newer) {
    const bool differs = size >= 0 && sizeThere >= 0 && size != sizeThere;
    leftOut = !differs && AgeToThere() != Age::Newer;
    if (!leftOut) policy = Policy::Replace;
  } else {
    policy = chosen;
    leftOut = chosen == Policy::Skip || (chosen == Policy::Resume && there != There::Shorter);
  }
}

TransferPlan TransferPlan::Look(std::string folder, std::vector<Entry> entries) {
  TransferPlan plan{std::move(folder), 0, std::move(entries)};
  LocalFolder opened;
  plan.error = opened.Open(plan.folder);
  if (plan.error != 0) return plan;
  Clashing clashing;
  std::unordered_set<std::string_view> given;
  // Where a file system takes names that differ in case for the same, two entries meet one file.
  std::set<std::pair<dev_t, ino_t>> met;
  for (Entry& entry : plan.entries) {
    struct stat status {};
    bool clashes = !given.insert(entry.local).second;
    if (!clashes &&
        ::fstatat(opened.Fd(), entry.local.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
      Meet(entry, FactsOf(status));
      const bool hasOneName = S_ISDIR(status.st_mode) || status.st_nlink == 1;
      clashes = hasOneName && !met.emplace(status.st_dev, status.st_ino).second;
    }
    if (clashes) clashing.push_back(&entry);
  }
  if (clashing.empty() && plan.CountExisting() == 0) return plan;
  FreeNames taken;
  taken.TakeIn(opened.Fd());
  GiveNames(plan.entries, clashing, taken);
  return plan;
}

TransferPlan TransferPlan::LookHere(std::string folder, std::vector<Entry> entries,
                                    const Names& names) {
  TransferPlan plan{std::move(folder), 0, std::move(entries)};
  Clashing clashing;
  std::unordered_set<std::string_view> given;
  for (Entry& entry : plan.entries) {
    LookAtSource(entry);
    if (!given.insert(entry.local).second) {
      clashing.push_back(&entry);
      continue;
    }
    if (const auto found = names.find(entry.local); found != names.end()) {
      Meet(entry, found->second);
    }
  }
  if (clashing.empty() && plan.CountExisting() == 0) return plan;
  FreeNames taken;
  for (const auto& [name, facts] : names) taken.Take(name);
  GiveNames(plan.entries, clashing, taken);
  return plan;
}

std::size_t TransferPlan::CountExisting() const {
  return static_cast<std::size_t>(std::ranges::count_if(
      entries, [](const Entry& entry) { return entry.there != There::Nothing; }));
}

void TransferPlan::SetForExisting(Policy policy) {
  for (Entry& entry : entries) {
    if (entry.there == There::Nothing) continue;
    entry.policy = policy;
    entry.leftOut = policy == Policy::Skip;
  }
}

void TransferPlan::SettleUnseen(Policy chosen) {
  const bool compares = chosen == Policy::Newer || chosen == Policy::KeepBoth;
  for (Entry& entry : entries) {
    entry.policy = compares && entry.kind != Kind::Directory ? Policy::CreateNew : chosen;
  }
}

void TransferPlan::SettleExisting(Policy chosen) {
  for (Entry& entry : entries) {
    if (entry.there != There::Nothing) entry.Settle(chosen);
  }
}

}  // namespace corvane
