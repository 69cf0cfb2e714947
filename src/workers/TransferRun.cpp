#include "workers/TransferRun.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "remote/RemotePath.h"

namespace corvane {

bool TransferRun::BeginFile(const std::string& remote, const Text& status) {
  return row.BeginFile(SplitPath(remote).second) &&
         (window == nullptr || window->SetStatus(status));
}

void TransferRun::Count(Proof proof) {
  row.Progress().proof = board.Prove(proof);
}

Outcome TransferRun::LookForTarget() const {
  if (!what.download || !target.IsGone()) return {};
  return {Outcome::Kind::LocalFull, 0,
          Text("The folder %1 is not there any more.", what.targetFolder)};
}

void TransferRun::NoteDelay(const Outcome& outcome) {
  const MutexLock hold(lock_);
  delay_ = outcome;
}

Outcome TransferRun::Delay() {
  const MutexLock hold(lock_);
  return delay_;
}

void TransferRun::NoteReach() {
  const std::int64_t there = row.Progress().there;
  std::int64_t most = reached_;
  while (most < there && !reached_.compare_exchange_weak(most, there)) continue;
}

void TransferRun::NoteTime(const Outcome& outcome, bool folder) {
  if (outcome.kind != Outcome::Kind::Refused) return;
  std::atomic<bool>& keeps = folder ? keepsFolderTimes : keepsTimes;
  if (!keeps.exchange(false)) return;
  const bool hasNoWay = outcome.code == 0;
  if (hasNoWay) keepsTimes = keepsFolderTimes = false;
  const Text told =
      folder && !hasNoWay
          ? Text("Folders on the server do not keep their times: %1", outcome.text.Reason())
          : Text("Files on the server do not keep their times: %1", outcome.text.Reason());
  OwnerUi& owner = window != nullptr ? static_cast<OwnerUi&>(*window) : row;
  owner.AppendLog(told.English() + "\n");
}

Proof ProofBy(DigestKind kind) {
  switch (kind) {
    case DigestKind::None: return Proof::None;
    case DigestKind::Crc32: return Proof::Crc32;
    case DigestKind::Md5: return Proof::Md5;
    case DigestKind::Sha1: return Proof::Sha1;
    case DigestKind::Sha256: return Proof::Sha256;
    case DigestKind::Sha512: return Proof::Sha512;
  }
  return Proof::None;
}

void FileProgress::Begin(std::int64_t there) {
  progress_.there += there - there_;
  there_ = there;
  progress_.changed = true;
}

void FileProgress::Rest(bool rests) {
  using namespace std::chrono;
  const std::int64_t now =
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
  heard_ = rests ? std::numeric_limits<std::int64_t>::max() : now;
  progress_.heard = rests ? 0 : now;
}

void FileProgress::Add(std::int64_t bytes) {
  using namespace std::chrono;
  there_ += bytes;
  progress_.there.fetch_add(bytes, std::memory_order_relaxed);
  progress_.moved.fetch_add(bytes, std::memory_order_relaxed);
  const std::int64_t now =
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
  progress_.heard.store(now, std::memory_order_relaxed);
  heard_.store(now, std::memory_order_relaxed);
  progress_.changed.store(true, std::memory_order_release);
}

}  // namespace corvane
