#include "workers/FileMover.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <vector>

#include "remote/TransferUi.h"
#include "util/ErrorText.h"
#include "workers/TransferPump.h"

namespace corvane {
namespace {

// How much of a file's end is compared before it is gone on with.
constexpr std::int64_t kTail = std::int64_t{64} * 1024;

bool StopsAll(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG || error == EIO || error == EROFS;
}

}  // namespace

Outcome WriteFailure(int error) {
  return {StopsAll(error) ? Outcome::Kind::LocalFull : Outcome::Kind::LocalError, 0,
          Text("Could not write the file: %1", ErrorText(error))};
}

Outcome FileMover::Download(const std::string& remote, std::int64_t size, LocalFile& file,
                            bool resume, Durability durability) {
  std::unique_ptr<RemoteFile> data;
  Outcome outcome =
      resume ? Resume(remote, size, file, data) : session_.OpenForReading(remote, 0, data);
  if (!outcome.IsDone()) return outcome;
  outcome = Receive(*data, file);
  if (!outcome.IsDone()) return outcome;
  outcome = Finish(*data, remote, file.Position());
  if (!outcome.IsDone()) return outcome;
  outcome = CameWhole(remote, size, file.Position());
  if (!outcome.IsDone()) return outcome;
  const int error = file.Commit(durability);
  return error == 0 ? Outcome{} : WriteFailure(error);
}

// Begins a little before the end of what is there. Afterwards `data` stands where `file` does, and
// `listed` is what the server says now.
Outcome FileMover::Resume(const std::string& remote, std::int64_t& listed, LocalFile& file,
                          std::unique_ptr<RemoteFile>& data) {
  const std::int64_t have = file.InitialSize();
  std::optional<std::int64_t> size;
  if (Outcome asked = session_.Size(remote, size); asked.kind == Outcome::Kind::Lost) return asked;
  listed = size.value_or(listed);
  bool same = size && *size >= have;
  const std::int64_t offset = same ? std::max<std::int64_t>(have - kTail, 0) : 0;
  Outcome outcome = session_.OpenForReading(remote, offset, data);
  if (!outcome.IsDone()) return outcome;
  const bool fromStart = data->Offset() == 0;
  same = same && data->Offset() == offset;
  if (same) outcome = SameTail(*data, file, same);
  if (!outcome.IsDone()) return outcome;
  if (same) {
    progress_.start = have;
    return outcome;
  }
  if (const int error = file.StartAfresh(); error != 0) return WriteFailure(error);
  const bool untouched = fromStart && (offset > 0 || !size || *size < have);
  if (untouched) return outcome;
  data.reset();
  return session_.OpenForReading(remote, 0, data);
}

// Reads what the server has in place of the local file's end and compares.
Outcome FileMover::SameTail(RemoteFile& data, LocalFile& file, bool& same) {
  const std::int64_t offset = data.Offset();
  std::vector<char> local(static_cast<std::size_t>(file.InitialSize() - offset));
  std::vector<char> remote(local.size());
  std::size_t count = 0;
  same = file.ReadAt(offset, local, count) == 0 && count == local.size();
  for (std::size_t have = 0; same && have < remote.size(); have += count) {
    if (Outcome outcome = data.Read(std::span(remote).subspan(have), count); !outcome.IsDone())
      return outcome;
    if (count == 0) same = false;
  }
  same = same && local == remote;
  return {};
}

Outcome FileMover::Receive(RemoteFile& data, LocalFile& file) {
  TransferPump pump(progress_, bufferSize_);
  while (!cancelled_) {
    std::size_t count = 0;
    const std::span<char> buffer = pump.Buffer();
    if (Outcome outcome = data.Read(buffer, count); !outcome.IsDone()) return outcome;
    if (count == 0) return {};
    if (const int error = file.Write(buffer.first(count)); error != 0) return WriteFailure(error);
    pump.Count(count);
    pump.Grow(count);
  }
  return Outcome::Cancelled();
}

// A file of another length than listed may have shrunk or grown since; the server is asked. One
// that goes on growing is larger by now, and one whose size it does not tell may have grown.
Outcome FileMover::CameWhole(const std::string& remote, std::int64_t listed, std::int64_t have) {
  if (listed < 0 || have == listed) return {};
  std::optional<std::int64_t> size;
  if (Outcome asked = session_.Size(remote, size);
      asked.kind == Outcome::Kind::Lost || asked.kind == Outcome::Kind::Cancelled)
    return asked;
  if (size == have || (have > listed && size.value_or(have) >= have)) return {};
  return {Outcome::Kind::Busy, 0,
          have < listed ? Text("Only %1 of %2 bytes came.", have, listed)
                        : Text("%1 bytes came of a file that has %2.", have, *size)};
}

Outcome FileMover::Upload(LocalFile& file, const std::string& remote) {
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = session_.OpenForWriting(remote, data);
  if (!outcome.IsDone()) return outcome;
  outcome = Send(*data, file);
  return outcome.IsDone() ? Finish(*data, remote, file.Position()) : outcome;
}

// The server's verdict or, where it was lost, what the server has after a new login.
Outcome FileMover::Finish(RemoteFile& data, const std::string& remote, std::int64_t moved) {
  Outcome outcome = data.Finish();
  if (outcome.kind != Outcome::Kind::Lost || !reconnects_ || cancelled_) return outcome;
  std::optional<std::int64_t> size;
  if (!session_.Connect().IsDone() || !session_.Size(remote, size).IsDone()) return outcome;
  return size == moved ? Outcome{} : outcome;
}

Outcome FileMover::Send(RemoteFile& data, LocalFile& file) {
  std::int64_t missing = file.InitialSize();
  TransferPump pump(progress_, bufferSize_);
  while (!cancelled_) {
    std::size_t count = 0;
    const std::span<char> buffer = pump.Buffer();
    if (const int error = file.Read(buffer, count); error != 0)
      return Outcome::LocalError(Text("Could not read the file: %1", ErrorText(error)));
    if (count == 0) {
      if (missing <= 0) return {};
      return Outcome::LocalError(Text("The file became shorter while it was being sent."));
    }
    missing -= static_cast<std::int64_t>(count);
    if (Outcome outcome = data.Write(buffer.first(count)); !outcome.IsDone()) return outcome;
    pump.Count(count);
    pump.Grow(count);
  }
  return Outcome::Cancelled();
}

}  // namespace corvane
