#include "sites/KnownServers.h"

#include <algorithm>
#include <ctime>

#include "settings/PreferenceSet.h"
#include "sites/TrustFile.h"

namespace corvane {
namespace {

std::string Lower(std::string host) {
  std::ranges::transform(host, host.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return host;
}

}  // namespace

KnownServers::KnownServers(std::string path)
    : file_(std::make_unique<TrustFile>(std::move(path))) {}

KnownServers::~KnownServers() = default;

std::string KnownServers::UsualPath() {
  return PathBesideSets("certificates.sqlite");
}

KnownServer KnownServers::Known(const Key& key) {
  KnownServer known = file_->Find(key.first, key.second);
  const auto passing = passing_.find(key);
  if (passing == passing_.end()) return known;
  const Passing& now = passing->second;
  if (now.trusted.has_value()) known.trusted = now.trusted;
  known.wasEncrypted = now.wasEncrypted.value_or(known.wasEncrypted);
  known.mayBePlain = now.mayBePlain.value_or(known.mayBePlain);
  return known;
}

KnownServer KnownServers::Find(const std::string& host, std::uint16_t port) {
  const MutexLock hold(lock_);
  return Known({Lower(host), port});
}

void KnownServers::Trust(const std::string& host, std::uint16_t port,
                         const Certificate& certificate, bool always) {
  const MutexLock hold(lock_);
  const Key key(Lower(host), port);
  KnownCertificate trusted{certificate, std::time(nullptr)};
  if (always && file_->Trust(key.first, port, trusted)) {
    passing_[key].trusted.reset();
  } else {
    passing_[key].trusted = std::move(trusted);
  }
}

void KnownServers::NoteEncrypted(const std::string& host, std::uint16_t port) {
  const MutexLock hold(lock_);
  const Key key(Lower(host), port);
  const KnownServer known = Known(key);
  if (known.wasEncrypted && !known.mayBePlain) return;
  const bool kept = file_->SetProtection(key.first, port, true, false);
  Passing& passing = passing_[key];
  passing.wasEncrypted = kept ? std::nullopt : std::optional(true);
  passing.mayBePlain = kept ? std::nullopt : std::optional(false);
}

void KnownServers::AllowPlain(const std::string& host, std::uint16_t port, bool always) {
  const MutexLock hold(lock_);
  const Key key(Lower(host), port);
  const bool kept = always && file_->SetProtection(key.first, port, false, true);
  Passing& passing = passing_[key];
  passing.wasEncrypted = kept ? std::nullopt : std::optional(false);
  passing.mayBePlain = kept ? std::nullopt : std::optional(true);
}

std::vector<KnownServers::Entry> KnownServers::List() {
  const MutexLock hold(lock_);
  std::map<Key, Entry> entries;
  for (TrustFile::Row& row : file_->Trusted()) {
    entries[{row.host, row.port}] = {row.host, row.port, std::move(row.trusted), true};
  }
  for (const auto& [key, passing] : passing_) {
    if (passing.trusted) entries[key] = {key.first, key.second, *passing.trusted, false};
  }
  std::vector<Entry> list;
  list.reserve(entries.size());
  for (auto& [key, entry] : entries) list.push_back(std::move(entry));
  return list;
}

void KnownServers::Remove(const std::string& host, std::uint16_t port) {
  const MutexLock hold(lock_);
  const Key key(Lower(host), port);
  if (const auto passing = passing_.find(key); passing != passing_.end()) {
    passing->second.trusted.reset();
  }
  file_->Forget(key.first, port);
}

Text KnownServers::Trouble() {
  const MutexLock hold(lock_);
  (void)file_->Find({}, 0);
  return file_->Trouble();
}

}  // namespace corvane
