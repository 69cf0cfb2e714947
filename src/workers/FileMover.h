#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "remote/RemoteSession.h"
#include "util/LocalFile.h"
#include "workers/transferStruct.h"

namespace corvane {

class TransferPump;
class TransferUi;
struct TransferProgress;

/// Moves one file at a time between a session and this machine, and says how far it is. Worker
/// threads; the caller holds the session's lease.
class FileMover {
 public:
  /// Nothing is owned. `bufferSize`: bytes with which a file's buffer starts.
  /// With `reconnects` a connection that is lost once all the data has come or gone is answered by
  /// a new one, and by a look at the file's size on the server.
  FileMover(RemoteSession& session, TransferProgress& progress, const std::atomic<bool>& cancelled,
            std::int32_t bufferSize, bool reconnects)
      : session_(session),
        progress_(progress),
        cancelled_(cancelled),
        bufferSize_(bufferSize),
        reconnects_(reconnects) {}

  /// Fetches `remote`, of `size` bytes as listed or -1, into `file`, which was opened as the policy
  /// has it, and commits it. A resumed file is gone on with only where its end is the server's too;
  /// else the file comes afresh, and what is there stays until it is whole.
  Outcome Download(const std::string& remote, std::int64_t size, LocalFile& file, bool resume,
                   Durability durability);
  /// Stores what `file` holds from its beginning as `remote`; what is there is replaced.
  Outcome Upload(LocalFile& file, const std::string& remote);

 private:
  Outcome Resume(const std::string& remote, std::int64_t& listed, LocalFile& file,
                 std::unique_ptr<RemoteFile>& data);
  Outcome SameTail(RemoteFile& data, LocalFile& file, bool& same);
  Outcome Receive(RemoteFile& data, LocalFile& file);
  Outcome Send(RemoteFile& data, LocalFile& file);
  Outcome Finish(RemoteFile& data, const std::string& remote, std::int64_t moved);
  Outcome CameWhole(const std::string& remote, std::int64_t listed, std::int64_t have);

  RemoteSession& session_;
  TransferProgress& progress_;
  const std::atomic<bool>& cancelled_;
  const std::int32_t bufferSize_;
  const bool reconnects_;
};

/// An outcome for an errno number of writing: where there is no room, nothing that follows fits.
[[nodiscard]] Outcome WriteFailure(int error);

}  // namespace corvane
