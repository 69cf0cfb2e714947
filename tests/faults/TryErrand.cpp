#include <gtest/gtest.h>

#include <thread>

#include "FaultMatrix.h"
#include "drive/DriveQueue.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// What lies below a local folder, by path from there.
std::map<std::string, std::string> Below(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file())
      files[entry.path().lexically_relative(folder)] = Contents(entry.path());
  return files;
}

/// What lies below a directory of the server, likewise.
std::map<std::string, std::string> Below(VirtualTree& tree, const std::string& directory) {
  std::map<std::string, std::string> files;
  for (const auto& [path, text] : tree.Everything())
    if (text.starts_with('-') && path.starts_with(directory + "/"))
      files[path.substr(directory.size() + 1)] = text.substr(1);
  return files;
}

/// One row of the queue.
class Row {
 public:
  Row(const Errand& errand, const Cell& cell) : server(cell), errand_(errand) {
    for (const char* const folder : {"target", "source/d"})
      fs::create_directories(folder_.Path() / folder);
    Write(folder_.Path() / "keep", "as it is");
    Write(folder_.Path() / "source/d/a", Bytes(3000));
    Write(folder_.Path() / "source/d/b", Bytes(200));
    const std::string name = fs::path(errand.entry).filename();
    if (!errand.before.empty() && errand.download) Write(Here() / name, errand.before);
    if (!errand.before.empty() && !errand.download)
      server.Tree().AddFile("/up/" + name, errand.before);
    drive::Options options;
    options.waits = kWaits;
    options.trustsAny = true;
    options.quiet = true;
    queue = std::make_shared<drive::DriveQueue>(options, nullptr);
    queue->Add(1, Description(name));
  }

  /// Until the row stands still; whether it says that it is done.
  bool Run() {
    RowState last = RowState::Waiting;
    queue->Run([&](RowId /*row*/, RowState state, const Text& why) {
      last = state;
      said = why.English();
    });
    return last == RowState::Done;
  }

  [[nodiscard]] bool IsWhole() {
    const std::string name = fs::path(errand_.entry).filename();
    const auto here = Below(errand_.download ? Here() : folder_.Path() / "source/d");
    const auto there = Below(server.Tree(), errand_.download ? "/d" : "/up");
    if (name == "d") {
      const auto prefixed = [](const auto& files) {
        std::map<std::string, std::string> all;
        for (const auto& [path, bytes] : files) all["d/" + path] = bytes;
        return all;
      };
      return errand_.download ? here == prefixed(there) : there == prefixed(here);
    }
    return here.contains(name) && there.contains(name) && here.at(name) == there.at(name) &&
           (errand_.download ? here : there).size() == 1;
  }
  /// What no transfer has a part in stands as it was.
  [[nodiscard]] bool KeepsTheRest() {
    return Contents(folder_.Path() / "keep") == "as it is" &&
           Contents(folder_.Path() / "source/d/a") == Bytes(3000) &&
           server.Tree().File("/keep") == "as it is" && server.Tree().File("/d/a") == Bytes(3000) &&
           std::distance(fs::directory_iterator(folder_.Path()), {}) == 3;
  }

  FaultServer server;
  std::shared_ptr<drive::DriveQueue> queue;
  std::string said;

 private:
  [[nodiscard]] fs::path Here() const { return folder_.Path() / "target"; }

  [[nodiscard]] transferStruct Description(const std::string& name) const {
    transferStruct what;
    what.site = server.site;
    what.download = errand_.download;
    what.remoteDirectory = errand_.download ? "/d" : "/up";
    what.targetFolder = Here();
    what.connections = 2;
    what.keepTimes = true;
    TransferJob job;
    job.remote = errand_.download ? "/" + errand_.entry : "/up/" + name;
    job.local = errand_.download ? Here() / name : folder_.Path() / "source" / errand_.entry;
    if (name == "d") job.kind = RemoteEntry::Kind::Directory;
    job.policy = errand_.policy;
    job.there = !errand_.download && !errand_.before.empty();
    what.jobs.push_back(job);
    return what;
  }

  const Errand errand_;
  TemporaryDirectory folder_;
};

}  // namespace

std::vector<std::string> Try(const Errand& errand, const Cell& cell) {
  std::atomic<Clock::rep> since{0};
  Row row(errand, cell);
  if (cell.fault != nullptr) {
    ScriptedAction action = ActionOf(*cell.fault, cell.verb);
    const bool stops = cell.fault->user != Fault::User::Waits;
    const std::weak_ptr<drive::DriveQueue> queue = row.queue;
    action.arrived = [queue, &since, stops] {
      since = Clock::now().time_since_epoch().count();
      if (const auto held = queue.lock(); held && stops) held->Cancel();
    };
    row.server.OnNext(cell.verb, action);
  }
  const bool done = row.Run();
  const Clock::duration took = Clock::now().time_since_epoch() - Clock::duration(since.load());
  const std::string dialogue = row.said + "\n" + row.server.Dialogue();
  EXPECT_TRUE(since == 0 || took < kSlower * std::chrono::seconds(4)) << dialogue;
  EXPECT_TRUE(!done || row.IsWhole()) << dialogue;
  EXPECT_TRUE(done || cell.fault != nullptr) << dialogue;
  if (!done) {
    // The fault has passed.
    row.queue->Retry(1);
    EXPECT_TRUE(row.Run()) << row.said << "\n" << row.server.Dialogue();
    EXPECT_TRUE(row.IsWhole()) << row.said << "\n" << row.server.Dialogue();
  }
  EXPECT_TRUE(row.KeepsTheRest()) << row.server.Dialogue();
  return row.server.Verbs();
}

}  // namespace corvane
