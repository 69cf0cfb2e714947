#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "queue/JobBoard.h"
#include "remote/RemoteSession.h"
#include "util/LocalFile.h"
#include "workers/TransferRun.h"

namespace corvane {

/// Fetches one file. What came of it under the file's own name stays where it fails, and so does a
/// part file where another try may help. One thread, which holds the session's lease.
class FileDownload {
 public:
  /// The references outlive the object. `reconnects`: a connection that is lost once all the data
  /// has come is answered by a new one, and by a look at the file's size on the server. `heard`
  /// becomes the moment of each byte.
  FileDownload(TransferRun& run, RemoteSession& session, const JobBoard::Work& work,
               bool reconnects, std::atomic<std::int64_t>& heard)
      : run_(run),
        session_(session),
        work_(work),
        reconnects_(reconnects),
        progress_(run.row.Progress(), heard),
        size_(work.job.size) {}

  /// Done with a text says that there was nothing to fetch.
  Outcome Fetch(const LocalFolder& folder);
  /// How many bytes the file turned out to have; -1 before it is whole.
  [[nodiscard]] std::int64_t Size() const { return whole_; }

 private:
  Outcome Open(const LocalFolder& folder);
  Outcome OpenBegun(const LocalFolder& folder);
  [[nodiscard]] Outcome LeaveAlone() const;
  Outcome Move();
  Outcome Begin(std::unique_ptr<RemoteFile>& data);
  Outcome Resume(std::unique_ptr<RemoteFile>& data);
  Outcome Afresh(std::unique_ptr<RemoteFile>& data);
  Outcome Receive(RemoteFile& data, Digest& digest);
  Outcome Finish(RemoteFile& data);
  Outcome CameWhole(Proof& proof);
  Outcome Verify(Digest& digest, Proof& proof);

  TransferRun& run_;
  RemoteSession& session_;
  const JobBoard::Work& work_;
  const bool reconnects_;
  FileProgress progress_;
  LocalFile file_;
  std::int64_t size_;  // as listed, or as the server says now; -1 when not known
  std::int64_t whole_ = -1;
  bool resumes_ = false;  // the file has a beginning that is to be gone on with
  bool ours_ = true;      // what stands there may be replaced
  bool resumed_ = false;  // and was
};

/// An outcome for an errno number of writing: where there is no room, nothing that follows fits.
[[nodiscard]] Outcome WriteFailure(int error);

}  // namespace corvane
