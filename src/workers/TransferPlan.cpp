#include "workers/TransferPlan.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "util/LocalFolder.h"

namespace corvane {
namespace {

TransferPlan::There WhatIsThere(const LocalFolder& folder, const TransferPlan::Entry& entry) {
  using enum TransferPlan::There;
  struct stat status {};
  if (::fstatat(folder.Fd(), entry.local.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return Nothing;
  }
  if (S_ISDIR(status.st_mode)) return Folder;
  if (S_ISLNK(status.st_mode)) return Link;
  if (!S_ISREG(status.st_mode) || entry.kind == RemoteEntry::Kind::Directory) return Other;
  if (status.st_size == entry.size) return SameSize;
  return entry.size >= 0 && status.st_size > entry.size ? Longer : Shorter;
}

}  // namespace

TransferPlan TransferPlan::Look(std::string folder, std::vector<Entry> entries) {
  TransferPlan plan{std::move(folder), 0, std::move(entries)};
  LocalFolder opened;
  plan.error = opened.Open(plan.folder);
  if (plan.error != 0) return plan;
  for (Entry& entry : plan.entries) entry.there = WhatIsThere(opened, entry);
  return plan;
}

std::size_t TransferPlan::CountExisting() const {
  return static_cast<std::size_t>(std::ranges::count_if(
      entries, [](const Entry& entry) { return entry.there != There::Nothing; }));
}

void TransferPlan::SetForExisting(Policy policy) {
  for (Entry& entry : entries) {
    if (entry.there != There::Nothing) entry.policy = policy;
  }
}

}  // namespace corvane
