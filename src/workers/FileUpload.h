#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "queue/JobBoard.h"
#include "remote/FileVersion.h"
#include "remote/RemoteSession.h"
#include "util/LocalFile.h"
#include "workers/TransferRun.h"

namespace corvane {

/// Sends one file. One that replaces a file goes under another name beside it and takes its name
/// once it is whole, where the server lets it. One thread, which holds the session's lease.
class FileUpload {
 public:
  /// The references outlive the object. `reconnects`: a connection that is lost once all the data
  /// has gone is answered by a new one, and by a look at the file's size on the server. `heard`
  /// becomes the moment of each byte.
  FileUpload(TransferRun& run, RemoteSession& session, const JobBoard::Work& work, bool reconnects,
             std::atomic<std::int64_t>& heard)
      : run_(run),
        session_(session),
        work_(work),
        reconnects_(reconnects),
        progress_(run.row.Progress(), heard) {}

  /// Done with a text says that there was nothing to send.
  Outcome Send();
  /// Where it ended because another state stands on the server than was expected: which one.
  [[nodiscard]] const FileVersion& Found() const { return found_; }
  /// How many bytes were sent and stand there; -1 before.
  [[nodiscard]] std::int64_t Size() const { return whole_; }

 private:
  [[nodiscard]] bool Replaces() const;
  [[nodiscard]] bool IsAside() const { return place_ != work_.job.remote; }
  Outcome CheckExpected(bool& arrived);
  Outcome Compare(std::int64_t there, bool& same);
  Outcome LookThere(bool& there);
  [[nodiscard]] Outcome LeaveAlone() const;
  void GoAside();
  Outcome SendThere();
  Outcome Move();
  Outcome Open(std::unique_ptr<RemoteFile>& data);
  Outcome GoOn(std::unique_ptr<RemoteFile>& data, bool& afresh);
  Outcome CompareEnd(std::int64_t there, bool& same);
  Outcome Pass(RemoteFile& data, Digest& digest);
  Outcome Finish(RemoteFile& data, std::optional<std::int64_t>& size);
  Outcome Verify(Digest& digest, Proof& proof);
  Outcome TakeName(std::int64_t sent);

  TransferRun& run_;
  RemoteSession& session_;
  const JobBoard::Work& work_;
  const bool reconnects_;
  FileProgress progress_;
  LocalFile file_;
  std::string place_;         // where the bytes go
  bool begun_ = false;        // a beginning may stand there
  bool nameRefused_ = false;  // the server does not take a file of that name, it seems
  bool fallsBack_ = false;    // and so it is tried under the right one
  bool ours_ = true;          // what stands there may be replaced
  std::int64_t begin_ = 0;    // where the bytes begin that are sent
  std::int64_t whole_ = -1;
  FileVersion found_;
};

}  // namespace corvane
