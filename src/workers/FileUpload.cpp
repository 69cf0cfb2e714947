#include "workers/FileUpload.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "remote/RemotePath.h"
#include "util/ErrorText.h"
#include "util/PartFile.h"
#include "workers/Comparing.h"
#include "workers/MayPass.h"
#include "workers/RemoteVersion.h"
#include "workers/TransferPump.h"

namespace corvane {
namespace {

using Kind = Outcome::Kind;
using Learned = Habits::Learned;

// Some servers say 550 where 553 is meant.
bool IsOfTheName(const Outcome& outcome) {
  constexpr std::array kCodes{501, 504, 550, 553};
  return outcome.kind == Kind::Refused && std::ranges::find(kCodes, outcome.code) != kCodes.end();
}

}  // namespace

Outcome FileUpload::Send() {
  if (const int error = file_.OpenForReading(work_.job.local); error != 0) {
    run_.row.SetTrailing(Text("  *Could not open file for reading!*"));
    return Outcome::LocalError(Text("Could not read %1: %2", work_.job.local, ErrorText(error)));
  }
  const TargetClaim claim(*run_.habits, work_.job.remote);
  if (!claim) {
    return Outcome::LocalError(
        Text("Another transfer is writing %1 already.", SplitPath(work_.job.remote).second));
  }
  // What was sent of a file that has changed since is of no use.
  const bool resumes = work_.job.policy == Policy::Resume;
  const bool changed =
      work_.job.begun && work_.job.modified && *work_.job.modified != file_.InitialTime();
  begun_ = !changed && (work_.job.begun || work_.kept || resumes);
  ours_ = work_.job.begun || Replaces() || resumes;
  bool arrived = false;
  if (Outcome checked = CheckExpected(arrived); !checked.IsDone() || arrived) return checked;
  bool there = false;
  if (Outcome looked = LookThere(there); !looked.IsDone() || !looked.text.IsEmpty()) return looked;
  place_ = work_.job.remote;
  if ((Replaces() && there) || (resumes && !begun_)) GoAside();
  if (!run_.BeginFile(work_.job.remote, Text("Uploading File."))) return Outcome::Cancelled();
  return SendThere();
}

// Whether what stands at its place is what may be replaced, or a beginning that an earlier try has
// left there. Where all of it has `arrived` already, nothing is left to send.
Outcome FileUpload::CheckExpected(bool& arrived) {
  if (!run_.what.expected) return {};
  progress_.Rest(true);
  FileVersion now;
  Outcome outcome = AskVersion(session_, work_.job.remote, Thorough::Yes, run_.cancelled, now);
  bool ours = outcome.IsDone() && MayBeSame(*run_.what.expected, now);
  const bool beginning = now.there && now.size >= 0 && now.size <= file_.InitialSize();
  const bool whole = now.size == file_.InitialSize();
  if (outcome.IsDone() && !ours && beginning && (whole || work_.job.begun)) {
    outcome = Compare(now.size, ours);
    arrived = ours && whole;
  }
  progress_.Rest(false);
  if (!outcome.IsDone()) return outcome;
  if (arrived) whole_ = now.size;
  if (ours) return {};
  found_ = now;
  const std::string name = SplitPath(work_.job.remote).second;
  Outcome changed{Kind::Refused, 0,
                  !run_.what.expected->there ? Text("\"%1\" stands on the server by now.", name)
                  : now.there                ? Text("\"%1\" has been changed on the server.", name)
                                             : Text("\"%1\" is no longer on the server.", name)};
  changed.trouble = Outcome::Trouble::Changed;
  return changed;
}

// Whether the server's first bytes are those of the file.
Outcome FileUpload::Compare(std::int64_t there, bool& same) {
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = session_.OpenForReading(work_.job.remote, 0, data);
  if (!outcome.IsDone()) return MayPass(outcome) ? outcome : Outcome{};
  std::vector<char> theirs(std::size_t{64} * 1024);
  std::vector<char> ours(theirs.size());
  std::int64_t at = 0;
  for (;;) {
    if (run_.cancelled) return Outcome::Cancelled();
    std::size_t got = 0;
    if (outcome = data->Read(theirs, got); !outcome.IsDone()) return outcome;
    if (got == 0) break;
    std::size_t here = 0;
    const std::span<char> block = std::span(ours).first(got);
    if (file_.ReadAt(at, block, here) != 0 || here != got ||
        !std::equal(block.begin(), block.end(), theirs.begin()))
      return {};
    at += static_cast<std::int64_t>(got);
  }
  outcome = data->Finish();
  same = outcome.IsDone() && at == there;
  return MayPass(outcome) ? outcome : Outcome{};
}

bool FileUpload::Replaces() const {
  return work_.job.policy == Policy::Replace || work_.job.policy == Policy::Newer;
}

// What a folder holds is known, and what the user let be replaced is there as far as anybody knows.
// Done with a text says that there is nothing to send.
Outcome FileUpload::LookThere(bool& there) {
  there = work_.job.there || (Replaces() && (!work_.InFolder() || work_.kept));
  if (begun_ || ours_) return {};
  if (!there && !work_.InFolder()) {
    if (Outcome asked = session_.Exists(work_.job.remote, there); !asked.IsDone()) return asked;
  }
  if (!there) return {};
  return LeaveAlone();
}

// What stands there is somebody else's.
Outcome FileUpload::LeaveAlone() const {
  if (work_.job.policy == Policy::Skip)
    return {Kind::Done, 0, Text("Left alone, for it is there already.")};
  return {Kind::Refused, 0, Text("\"%1\" exists already.", SplitPath(work_.job.remote).second)};
}

// Under another name beside it, where the server is not known to refuse that.
void FileUpload::GoAside() {
  if (!run_.what.usesPartNames || run_.habits->replacesByRename == Learned::No) return;
  const auto [directory, name] = SplitPath(work_.job.remote);
  place_ = PathBelow(directory, PartFile::NameFor(name));
}

// A server may take no such name, which it is known for once it has taken the right one. What it
// refuses for another reason it refuses under the right name too, and what stands there is worth
// more than a try.
Outcome FileUpload::SendThere() {
  Outcome outcome = Move();
  if (outcome.kind != Kind::Refused || !IsAside()) return outcome;
  (void)session_.RemoveFile(place_);
  if (!nameRefused_ || run_.habits->replacesByRename == Learned::Yes) return outcome;
  fallsBack_ = true;
  place_ = work_.job.remote;
  begun_ = false;
  bool arrived = false;
  if (Outcome checked = CheckExpected(arrived); !checked.IsDone() || arrived) return checked;
  return Move();
}

Outcome FileUpload::Move() {
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = Open(data);
  if (!outcome.IsDone() || !outcome.text.IsEmpty()) return outcome;
  if (fallsBack_) run_.habits->replacesByRename = Learned::No;
  run_.board.SetBegun(work_.id, file_.InitialTime());
  const DigestKind kind = run_.what.checks ? session_.OffersDigest() : DigestKind::None;
  Digest digest(kind);
  progress_.Rest(true);
  bool checks = kind != DigestKind::None && AddBeginning(file_, begin_, digest, run_.cancelled);
  progress_.Rest(false);
  std::optional<std::int64_t> size;
  if (data) {
    outcome = Pass(*data, digest);
    if (outcome.IsDone()) outcome = Finish(*data, size);
    if (!outcome.IsDone()) return outcome;
  } else {
    size = file_.InitialSize();
  }
  const std::int64_t sent = std::max(file_.Position(), begin_);
  if (size && *size != sent) {
    return {Kind::Busy, 0, Text("Only %1 of %2 bytes arrived.", *size, sent)};
  }
  Proof proof = size ? Proof::Size : Proof::None;
  if (checks) outcome = Verify(digest, proof);
  if (outcome.IsDone() && IsAside()) outcome = TakeName(sent);
  if (!outcome.IsDone()) return outcome;
  whole_ = sent;
  progress_.Keep();
  run_.Count(proof);
  return {};
}

// Afterwards the file stands where `data` does; without data everything is there. Done with a text
// says that there is nothing to send.
Outcome FileUpload::Open(std::unique_ptr<RemoteFile>& data) {
  bool afresh = true;
  if (begun_) {
    const bool wasAside = IsAside();
    Outcome outcome = GoOn(data, afresh);
    // An earlier try may have gone aside too.
    if (outcome.IsDone() && afresh && IsAside() != wasAside) outcome = GoOn(data, afresh);
    if (!outcome.IsDone() || !outcome.text.IsEmpty() || !afresh) return outcome;
  }
  begin_ = 0;
  progress_.Begin(0);
  Outcome outcome = session_.OpenForWriting(place_, 0, data);
  nameRefused_ = IsOfTheName(outcome);
  return outcome;
}

// What stands there is compared with the beginning of the file, as far as it can be read back.
Outcome FileUpload::GoOn(std::unique_ptr<RemoteFile>& data, bool& afresh) {
  std::optional<std::int64_t> there;
  Outcome outcome = session_.Size(place_, there);
  if (MayPass(outcome)) return outcome;
  if (!there) {
    // Who is not to replace anything learns whether there is something.
    bool exists = false;
    if (!ours_) outcome = session_.Exists(place_, exists);
    if (MayPass(outcome)) return outcome;
    return exists ? LeaveAlone() : Outcome{};
  }
  bool same = *there <= file_.InitialSize();
  if (same && *there > 0) outcome = CompareEnd(*there, same);
  if (MayPass(outcome)) return outcome;
  const bool complete = *there == file_.InitialSize();
  if (same && !complete && *there > 0) {
    outcome = session_.OpenForWriting(place_, *there, data);
    if (!outcome.IsDone() && outcome.kind != Kind::Refused) return outcome;
    same = outcome.IsDone() && data->Offset() == *there;
    if (!same) data.reset();
  }
  afresh = !same || (*there == 0 && !complete);
  if (!afresh) {
    begin_ = *there;
    progress_.Begin(begin_);
  } else if (*there > 0 && !IsAside()) {
    // Something else stands there, or what cannot be gone on with.
    if (!ours_) return LeaveAlone();
    if (!work_.job.begun || work_.job.policy == Policy::Resume) GoAside();
  }
  return {};
}

// A server that does not let it be read back is believed where the beginning is this program's own;
// what is resumed may be somebody else's.
Outcome FileUpload::CompareEnd(std::int64_t there, bool& same) {
  const std::int64_t offset = std::max<std::int64_t>(there - kTail, 0);
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = session_.OpenForReading(place_, offset, data);
  if (MayPass(outcome)) return outcome;
  if (!outcome.IsDone()) {
    same = work_.job.begun && work_.job.policy != Policy::Resume && (IsAside() || !Replaces());
    return {};
  }
  same = data->Offset() == offset;
  if (!same) return {};
  outcome = SameTail(file_, *data, there, same);
  if (MayPass(outcome)) return outcome;
  same = same && outcome.IsDone();
  // What follows, if anything does, is of no interest.
  char more = 0;
  std::size_t count = 0;
  if (same) (void)data->Read({&more, 1}, count);
  outcome = data->Finish();
  return MayPass(outcome) ? outcome : Outcome{};
}

Outcome FileUpload::Pass(RemoteFile& data, Digest& digest) {
  if (const int error = file_.Seek(begin_); error != 0)
    return Outcome::LocalError(Text("Could not read the file: %1", ErrorText(error)));
  std::int64_t missing = file_.InitialSize() - begin_;
  TransferPump pump(run_, progress_, digest);
  while (!run_.cancelled) {
    std::size_t count = 0;
    const std::span<char> buffer = pump.Buffer();
    if (const int error = file_.Read(buffer, count); error != 0)
      return Outcome::LocalError(Text("Could not read the file: %1", ErrorText(error)));
    if (count == 0) {
      if (missing <= 0) return {};
      return Outcome::LocalError(Text("The file became shorter while it was being sent."));
    }
    missing -= static_cast<std::int64_t>(count);
    if (Outcome outcome = data.Write(buffer.first(count)); !outcome.IsDone()) return outcome;
    pump.Count(count);
  }
  return Outcome::Cancelled();
}

// The server's verdict and the size that it has; or, where it was lost, the size after a new login.
Outcome FileUpload::Finish(RemoteFile& data, std::optional<std::int64_t>& size) {
  RemoteFile::Settled settled;
  RemoteFile::Afterwards wanted{.askSize = true, .more = run_.board.Ready() > 0};
  if (run_.KeepsTimes(false)) wanted.setTime = file_.InitialTime();
  progress_.Rest(true);
  Outcome outcome = data.Finish(wanted, settled);
  progress_.Rest(false);
  size = settled.size;
  if (settled.time) run_.NoteTime(*settled.time, false);
  if (outcome.kind != Kind::Lost || !reconnects_ || run_.cancelled) return outcome;
  if (!session_.Connect().IsDone() || !session_.Size(place_, size).IsDone()) return outcome;
  return size == file_.Position() ? Outcome{} : outcome;
}

Outcome FileUpload::Verify(Digest& digest, Proof& proof) {
  const DigestKind kind = session_.OffersDigest();
  std::string theirs;
  progress_.Rest(true);
  Outcome asked = session_.Checksum(place_, file_.InitialSize(), kind, theirs);
  progress_.Rest(false);
  if (MayPass(asked)) return asked;
  if (!asked.IsDone()) return {};
  const std::string ours = digest.Take();
  if (ours.empty()) return {};  // this machine does not make such a one
  if (ours != theirs) {
    return {Kind::Refused, 0, Text("What arrived is not what was sent: the checksums differ.")};
  }
  proof = ProofBy(kind);
  return {};
}

// Servers that do not replace by renaming have the old file removed first, once all of the new one
// is known to be there.
Outcome FileUpload::TakeName(std::int64_t sent) {
  bool arrived = false;
  if (Outcome checked = CheckExpected(arrived); !checked.IsDone()) return checked;
  Outcome outcome = session_.Rename(place_, work_.job.remote);
  if (outcome.IsDone()) {
    run_.habits->replacesByRename = Learned::Yes;
    return outcome;
  }
  if (outcome.kind != Kind::Refused) return outcome;
  // One that does not rename at all gets the file under its own name after all.
  nameRefused_ = outcome.code == 500 || outcome.code == 502 || outcome.code == 504;
  if (nameRefused_) return outcome;
  bool there = false;
  if (Outcome asked = session_.Exists(place_, there); MayPass(asked)) return asked;
  std::optional<std::int64_t> size;
  if (Outcome asked = session_.Size(place_, size); MayPass(asked)) return asked;
  if (!there || size.value_or(sent) != sent) return outcome;
  if (Outcome checked = CheckExpected(arrived); !checked.IsDone()) return checked;
  if (Outcome removed = session_.RemoveFile(work_.job.remote); !removed.IsDone())
    return MayPass(removed) ? removed : outcome;
  outcome = session_.Rename(place_, work_.job.remote);
  if (outcome.IsDone()) run_.habits->replacesByRename = Learned::No;
  if (outcome.kind != Kind::Refused) return outcome;
  return {Kind::LocalError, outcome.code,
          Text("It arrived as %1 and could not get its name: %2", SplitPath(place_).second,
               outcome.text.Reason())};
}

}  // namespace corvane
