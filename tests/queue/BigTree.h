#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "queue/JobBoard.h"

namespace corvane {

/// A tree on a server that nobody keeps: four directories in each of three levels, some files in
/// each, and empty directories.
struct BigTree {
  int files = 10;  ///< in each directory
  [[nodiscard]] int AllDirectories() const { return 1 + 4 + 16 + 64; }
  [[nodiscard]] int AllFiles() const { return (AllDirectories() - 64 / 4) * files; }

  [[nodiscard]] static transferStruct Wanted() {
    transferStruct what;
    what.site.host = "h";
    what.remoteDirectory = "/";
    what.targetFolder = "/target";
    what.jobs = {{.remote = "/d0", .local = "/target/d0", .kind = RemoteEntry::Kind::Directory}};
    return what;
  }
  [[nodiscard]] std::vector<TransferJob> Holds(const std::string& directory) const {
    std::vector<TransferJob> jobs;
    const auto depth = std::count(directory.begin(), directory.end(), '/');
    for (int i = 0; depth < 4 && i < 4; ++i) {
      const std::string name = "d" + std::to_string(i);
      jobs.push_back({.remote = name, .local = name, .kind = RemoteEntry::Kind::Directory});
    }
    if (depth == 4 && directory.ends_with("3")) return jobs;
    for (int i = 0; i < files; ++i) {
      const std::string name = "f" + std::to_string(i);
      jobs.push_back({.remote = name, .local = name + "~", .size = i});
    }
    return jobs;
  }
  /// Takes jobs as long as there are any. `file` says what became of a file; nothing puts it back.
  void Carry(JobBoard& board,
             const std::function<std::optional<JobState>(const JobBoard::Work&)>& file) const {
    JobId near = kNoJob;
    while (auto work = board.Take(near)) {
      std::optional<JobBoard::Work> above;
      near = work->parent;
      if (work->job.kind == RemoteEntry::Kind::Directory) {
        near = work->id;
        auto holds = Holds(work->job.remote);
        const bool empty = holds.empty();
        board.Open(*work, work->job.remote, std::move(holds));
        if (empty) above = board.End(work->id, JobState::Done);
      } else if (const auto state = file(*work)) {
        above = board.End(work->id, *state);
      } else {
        board.PutBack(work->id);
      }
      while (above) above = board.End(above->id, JobState::Done);
    }
  }
};

}  // namespace corvane
