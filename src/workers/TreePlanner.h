#pragma once

#include <string>
#include <vector>

#include "queue/JobBoard.h"
#include "remote/RemoteSession.h"
#include "util/FreeNames.h"
#include "workers/TransferRun.h"

namespace corvane {

/// Makes jobs of what a folder holds, and does what is left when all of them have ended. One
/// thread, which holds the session's lease.
class TreePlanner {
 public:
  /// The references outlive the object.
  TreePlanner(TransferRun& run, RemoteSession& session) : run_(run), session_(session) {}

  /// Makes the folder on the other side and opens its job on the board. `above`: the local folder
  /// that it is in, of a download.
  Outcome Plan(const JobBoard::Work& directory, const LocalFolder& above);
  /// Whether the folder that was planned holds nothing, so that nothing else ends it.
  [[nodiscard]] bool HeldNothing() const { return heldNothing_; }
  /// Everything in the folder has ended: gives it its time. `itself`: the local folder, of a
  /// download.
  void Complete(const JobBoard::Work& directory, const LocalFolder& itself);

 private:
  /// Takes note of what a folder holds; refused, and not counted, where that is too much in all.
  [[nodiscard]] Outcome CountEntries(std::size_t entries);

  // A download's.
  Outcome PlanDownload(const JobBoard::Work& directory, const LocalFolder& above);
  Outcome EnterRemote(const JobBoard::Work& directory, std::string& where);
  [[nodiscard]] std::vector<TransferJob> JobsOf(const JobBoard::Work& directory,
                                                const LocalFolder& folder,
                                                const std::vector<RemoteEntry>& entries);
  [[nodiscard]] static bool Settle(TransferJob& job, const LocalFolder& folder, FreeNames& names);

  // An upload's.
  Outcome PlanUpload(const JobBoard::Work& directory);
  Outcome MakeRemote(const JobBoard::Work& directory, std::string& where,
                     std::vector<RemoteEntry>& there);
  void AddLocal(const JobBoard::Work& directory, const std::string& path,
                const std::vector<RemoteEntry>& there, FreeNames& names,
                std::vector<TransferJob>& jobs);
  [[nodiscard]] static bool Settle(TransferJob& job, const std::vector<RemoteEntry>& there,
                                   std::int64_t modified, FreeNames& names);

  TransferRun& run_;
  RemoteSession& session_;
  bool heldNothing_ = false;
};

}  // namespace corvane
