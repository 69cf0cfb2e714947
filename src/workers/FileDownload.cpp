#include "workers/FileDownload.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <vector>

#include "remote/ExactTime.h"
#include "util/ErrorText.h"
#include "workers/Comparing.h"
#include "workers/MayPass.h"
#include "workers/TransferPump.h"

namespace corvane {
namespace {

using Kind = Outcome::Kind;

bool StopsAll(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG || error == EIO || error == EROFS;
}

Outcome OpenFailure(const std::string& name, int error) {
  if (error == EWOULDBLOCK)
    return Outcome::LocalError(Text("Another transfer is writing %1 already.", name));
  if (error == EEXIST) return Outcome::LocalError(Text("\"%1\" exists already.", name));
  Outcome outcome = WriteFailure(error);
  outcome.text = Text("Could not open %1: %2", name, ErrorText(error));
  return outcome;
}

}  // namespace

Outcome WriteFailure(int error) {
  return {StopsAll(error) ? Kind::LocalFull : Kind::LocalError, 0,
          Text("Could not write the file: %1", ErrorText(error))};
}

Outcome FileDownload::Fetch(const LocalFolder& folder) {
  Outcome outcome = Open(folder);
  if (!outcome.IsDone() || !outcome.text.IsEmpty()) return outcome;
  if (ours_) run_.board.SetBegun(work_.id);
  if (!run_.BeginFile(work_.job.remote, Text("Downloading File."))) return Outcome::Cancelled();
  if (run_.what.keepTimes && work_.job.modified) file_.SetTime(*work_.job.modified);
  outcome = Move();
  if (MayPass(outcome)) file_.Keep();
  return outcome;
}

// Done with a text says that there is nothing to fetch. In a folder that is resumed some files are
// whole, some begun, and some not there yet.
Outcome FileDownload::Open(const LocalFolder& folder) {
  using Mode = LocalFile::Mode;
  const Policy policy = work_.job.policy;
  if (work_.job.begun || work_.kept) return OpenBegun(folder);
  if (policy == Policy::Resume) {
    const int error = file_.Open(folder, work_.name, Mode::Resume);
    resumes_ = error == 0;
    if (error != ENOENT || !work_.InFolder()) {
      return error == 0 ? Outcome{} : OpenFailure(work_.name, error);
    }
  }
  const bool replaces = policy == Policy::Replace || policy == Policy::Newer;
  const int error = file_.Open(folder, work_.name, replaces ? Mode::Replace : Mode::CreateNew);
  if (error == EEXIST) return LeaveAlone();
  return error == 0 ? Outcome{} : OpenFailure(work_.name, error);
}

// What stands there is somebody else's.
Outcome FileDownload::LeaveAlone() const {
  if (work_.job.policy != Policy::Skip) return OpenFailure(work_.name, EEXIST);
  return {Kind::Done, 0, Text("Left alone, for it is there already.")};
}

// An earlier try has left a beginning, or may have: in the part file of a file that is replaced,
// else under the file's own name.
Outcome FileDownload::OpenBegun(const LocalFolder& folder) {
  using Mode = LocalFile::Mode;
  const Policy policy = work_.job.policy;
  const bool replaces = policy == Policy::Replace || policy == Policy::Newer;
  resumes_ = true;
  int error = file_.Open(folder, work_.name, replaces ? Mode::GoOn : Mode::Resume);
  if (replaces && error == 0 && file_.InitialSize() == 0) resumes_ = false;
  if (!replaces && error == ENOENT) {
    resumes_ = false;
    error = file_.Open(folder, work_.name, Mode::CreateNew);
  }
  ours_ = work_.job.begun || replaces || policy == Policy::Resume;
  return error == 0 ? Outcome{} : OpenFailure(work_.name, error);
}

Outcome FileDownload::Move() {
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = Begin(data);
  if (!outcome.IsDone() || !data) return outcome;
  const DigestKind kind = run_.what.checks ? session_.OffersDigest() : DigestKind::None;
  Digest digest(kind);
  progress_.Rest(true);
  const bool checks =
      kind != DigestKind::None && AddBeginning(file_, file_.Position(), digest, run_.cancelled);
  progress_.Rest(false);
  outcome = Receive(*data, digest);
  if (!outcome.IsDone()) return outcome;
  outcome = Finish(*data);
  if (!outcome.IsDone()) return outcome;
  Proof proof = Proof::None;
  outcome = CameWhole(proof);
  if (outcome.IsDone() && checks) outcome = Verify(digest, proof);
  if (!outcome.IsDone()) return outcome;
  whole_ = file_.Position();
  progress_.Rest(true);
  const int error = file_.Commit(run_.syncsAtEnd ? Durability::Later : Durability::Now);
  if (error != 0) return WriteFailure(error);
  progress_.Keep();
  run_.Count(proof);
  return {};
}

Outcome FileDownload::Begin(std::unique_ptr<RemoteFile>& data) {
  if (!resumes_) return session_.OpenForReading(work_.job.remote, 0, data);
  return Resume(data);
}

// Begins a little before the end of what is there. Afterwards `data` stands where the file does;
// without data there is nothing to fetch.
Outcome FileDownload::Resume(std::unique_ptr<RemoteFile>& data) {
  const std::int64_t have = file_.InitialSize();
  std::optional<std::int64_t> size;
  if (Outcome asked = session_.Size(work_.job.remote, size); asked.kind == Kind::Lost) return asked;
  size_ = size.value_or(size_);
  bool same = size && *size >= have;
  // What came of a file that has changed since is of no use.
  if (same && have > 0 && work_.job.modified) {
    const auto now = AskTime(session_, work_.job.remote);
    same = !now || *now == *work_.job.modified;
  }
  const std::int64_t offset = same ? std::max<std::int64_t>(have - kTail, 0) : 0;
  Outcome outcome = session_.OpenForReading(work_.job.remote, offset, data);
  if (!outcome.IsDone()) return outcome;
  const bool fromStart = data->Offset() == 0;
  same = same && data->Offset() == offset;
  if (same) outcome = SameTail(file_, *data, have, same);
  if (!outcome.IsDone()) return outcome;
  if (same) {
    // A beginning of this very file: it is this transfer's to go on with.
    run_.board.SetBegun(work_.id);
    resumed_ = have > 0;
    progress_.Begin(have);
    return outcome;
  }
  if (!ours_) {
    data.reset();
    return LeaveAlone();
  }
  const bool untouched = fromStart && (offset > 0 || !size || *size < have);
  if (!untouched) return Afresh(data);
  const int error = file_.StartAfresh();
  return error == 0 ? Outcome{} : WriteFailure(error);
}

Outcome FileDownload::Afresh(std::unique_ptr<RemoteFile>& data) {
  if (const int error = file_.StartAfresh(); error != 0) return WriteFailure(error);
  progress_.Begin(0);
  resumed_ = false;
  data.reset();
  return session_.OpenForReading(work_.job.remote, 0, data);
}

Outcome FileDownload::Receive(RemoteFile& data, Digest& digest) {
  TransferPump pump(run_, progress_, digest);
  while (!run_.cancelled) {
    std::size_t count = 0;
    const std::span<char> buffer = pump.Buffer();
    if (Outcome outcome = data.Read(buffer, count); !outcome.IsDone()) return outcome;
    if (count == 0) return {};
    if (const int error = file_.Write(buffer.first(count)); error != 0) return WriteFailure(error);
    pump.Count(count);
  }
  return Outcome::Cancelled();
}

// The server's verdict or, where it was lost, what the server has after a new login.
Outcome FileDownload::Finish(RemoteFile& data) {
  RemoteFile::Settled settled;
  const bool asksTime = run_.what.keepTimes && !work_.job.modified;
  Outcome outcome = data.Finish(
      {.askSize = size_<0, .askTime = asksTime, .more = run_.board.Ready()> 0}, settled);
  size_ = settled.size.value_or(size_);
  if (const auto time = ExactTime(settled.modified)) file_.SetTime(*time);
  if (outcome.kind != Kind::Lost || !reconnects_ || run_.cancelled) return outcome;
  std::optional<std::int64_t> size;
  if (!session_.Connect().IsDone() || !session_.Size(work_.job.remote, size).IsDone())
    return outcome;
  return size == file_.Position() ? Outcome{} : outcome;
}

// A file of another length than listed may have shrunk or grown since; the server is asked. One
// that goes on growing is larger by now, and one whose size it does not tell may have grown.
Outcome FileDownload::CameWhole(Proof& proof) {
  const std::int64_t have = file_.Position();
  if (size_ >= 0 && have == size_) {
    proof = Proof::Size;
    return {};
  }
  if (size_ < 0) return {};
  std::optional<std::int64_t> size;
  if (Outcome asked = session_.Size(work_.job.remote, size);
      asked.kind == Kind::Lost || asked.kind == Kind::Cancelled)
    return asked;
  if (size == have) proof = Proof::Size;
  if (size == have || (have > size_ && size.value_or(have) >= have)) return {};
  return {Kind::Busy, 0,
          have < size_ ? Text("Only %1 of %2 bytes came.", have, size_)
                       : Text("%1 bytes came of a file that has %2.", have, *size)};
}

// One that was gone on with may go wrong in what had been there before: it comes afresh, once.
Outcome FileDownload::Verify(Digest& digest, Proof& proof) {
  const DigestKind kind = session_.OffersDigest();
  std::string theirs;
  progress_.Rest(true);
  Outcome asked = session_.Checksum(work_.job.remote, file_.Position(), kind, theirs);
  progress_.Rest(false);
  if (asked.kind == Kind::Lost || asked.kind == Kind::Cancelled) return asked;
  if (!asked.IsDone()) return {};
  const std::string ours = digest.Take();
  if (ours.empty()) return {};  // this machine does not make such a one
  if (ours == theirs) {
    proof = ProofBy(kind);
    return {};
  }
  if (!resumed_)
    return {Kind::Refused, 0, Text("What came is not what the server has: the checksums differ.")};
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = Afresh(data);
  if (outcome.IsDone()) outcome = Receive(*data, digest);
  if (outcome.IsDone()) outcome = Finish(*data);
  if (outcome.IsDone()) outcome = CameWhole(proof);
  return outcome.IsDone() ? Verify(digest, proof) : outcome;
}

}  // namespace corvane
