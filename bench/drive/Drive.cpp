// The client without windows: the session and the workers that the windows use, for benchmarks,
// fault tests and scripts.

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "DriveOptions.h"
#include "DriveQueue.h"
#include "DriveRights.h"
#include "DriveRow.h"
#include "ftp/ListingParser.h"
#include "ftp/ListingText.h"
#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "workers/Refusals.h"
#include "workers/TreeRemover.h"

namespace corvane::drive {
namespace {

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

std::string Hex(const std::string& bytes) {
  std::string hex;
  for (const char c : bytes) {
    hex += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
    hex += "0123456789abcdef"[static_cast<unsigned char>(c) & 15];
  }
  return hex;
}

// DisplayText leaves no control characters, which JSON would not take.
void Print(const RemoteEntry& entry) {
  constexpr const char* kKinds[] = {"", "file", "directory", "link", "device"};
  constexpr const char* kPrecisions[] = {"day", "minute", "second"};
  std::string line = "{\"bytes\":\"" + Hex(entry.name) +
                     "\",\"name\":" + Quoted(DisplayText(entry.name)) + ",\"kind\":\"" +
                     kKinds[static_cast<std::size_t>(entry.kind)] + '"';
  if (entry.size) line += ",\"size\":" + std::to_string(*entry.size);
  if (entry.modified) {
    line += ",\"time\":" + std::to_string(entry.modified->seconds) + ",\"precision\":\"" +
            kPrecisions[static_cast<std::size_t>(entry.modified->precision)] + '"';
  }
  if (!entry.linkTarget.empty()) line += ",\"target\":" + Quoted(DisplayText(entry.linkTarget));
  std::puts((line + "}").c_str());
}

class Printer final : public ListingSink {
 public:
  void Raw(std::string_view /*text*/) override {}
  bool Add(std::vector<RemoteEntry> entries) override {
    for (const RemoteEntry& entry : entries) Print(entry);
    return true;
  }
};

transferStruct Description(const Options& options, const Asked& asked) {
  transferStruct what;
  what.site = asked.site;
  what.download = asked.download;
  what.keepTimes = true;
  what.connections = options.connections;
  TransferJob job;
  job.policy = options.policy;
  const std::string& path = asked.site.path;
  if (what.download) {
    const auto [directory, name] = SplitPath(path);
    what.remoteDirectory = directory;
    what.targetFolder = asked.local;
    job.remote = WithoutTrailingSlash(path);
    job.local = PathBelow(asked.local, name);
    if (path.ends_with('/')) job.kind = RemoteEntry::Kind::Directory;
  } else {
    what.remoteDirectory = path;
    job.local = WithoutTrailingSlash(asked.local);
    job.remote = PathBelow(path, std::filesystem::path(job.local).filename().string());
  }
  what.jobs.push_back(std::move(job));
  return what;
}

bool Transfer(const Options& options) {
  const auto begin = std::chrono::steady_clock::now();
  DriveQueue queue(options, nullptr);
  queue.Add(1, Description(options, {options.command == "get", options.site, options.local}));
  bool finished = false;
  Text why;
  queue.Run([&](RowId /*row*/, RowState state, const Text& reason) {
    finished = state == RowState::Done;
    why = state == RowState::Cancelled ? Text("Cancelled.") : reason;
  });
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  if (!finished) Complain(why);
  if (options.json) {
    std::printf("{\"finished\":%s,\"seconds\":%.3f,\"why\":%s}\n", finished ? "true" : "false",
                seconds.count(), Quoted(DisplayText(why.English())).c_str());
  }
  return finished;
}

// Each row's end is said at once, so that who kills this program knows what was said.
bool Queue(const Options& options) {
  const auto store = std::make_shared<QueueStore>(options.local);
  const std::vector<QueueStore::Row> left = store->Load();
  if (!store->Trouble().IsEmpty()) Complain(store->Trouble());
  DriveQueue queue(options, store);
  RowId id = store->NextId();
  if (options.resumes)
    for (const QueueStore::Row& row : left) queue.Resume(row);
  for (const Asked& asked : options.asked) queue.Add(id++, Description(options, asked));
  bool finished = true;
  queue.Run([&](RowId row, RowState state, const Text& why) {
    constexpr const char* kStates[] = {"waiting", "running",   "paused", "again",
                                       "failed",  "cancelled", "done"};
    finished = finished && state == RowState::Done;
    std::printf("{\"row\":%lld,\"state\":\"%s\",\"files\":%lld,\"moved\":%lld,\"why\":%s}\n",
                static_cast<long long>(row), kStates[static_cast<std::size_t>(state)],
                static_cast<long long>(queue.Files(row)), static_cast<long long>(queue.Moved(row)),
                Quoted(DisplayText(why.English())).c_str());
    std::fflush(stdout);
  });
  store->Flush();
  if (!store->Trouble().IsEmpty()) Complain(store->Trouble());
  return finished;
}

Outcome Remove(MFtp& session, Row& row, const std::string& path) {
  const auto [directory, name] = SplitPath(path);
  Refusals refused;
  TreeRemover remover(session, row, refused, directory);
  bool gone = false;
  if (path.ends_with('/')) {
    gone = remover.RemoveDirectory(name);
  } else {
    remover.RemoveFiles({name}, [&gone](bool one) { return gone = one; });
  }
  if (gone) return {};
  return {Outcome::Kind::Refused, 0, refused.Lines()};
}

Outcome Carry(const Options& options, MFtp& session, Row& row) {
  const std::string& path = options.site.path;
  if (options.command == "list") {
    Printer printer;
    return session.List(path, printer);
  }
  if (options.command == "remove") return Remove(session, row, path);
  if (options.command == "mkdir") return session.MakeDirectory(WithoutTrailingSlash(path));
  return session.Rename(WithoutTrailingSlash(path), PathFrom(SplitPath(path).first, options.local));
}

bool Operate(const Options& options) {
  const auto row = std::make_shared<Row>(options, 0, nullptr);
  MFtp session(options.site, row);
  Outcome outcome = session.Connect();
  if (outcome.IsDone()) outcome = Carry(options, session, *row);
  session.Quit();
  if (!outcome.text.IsEmpty()) Complain(outcome.text);
  return outcome.IsDone();
}

bool Parse(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  file.peek();  // a directory can be opened, and not be read
  if (!file.is_open() || file.bad()) {
    Complain(Text("Could not read %1: %2", path, ErrorText(errno)));
    return false;
  }
  ListingText text;
  std::vector<char> block(std::size_t{64} * 1024);
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())), file.gcount() > 0) {
    if (!text.Append({block.data(), static_cast<std::size_t>(file.gcount())})) return false;
  }
  ListingParser parser(text.View(), Today());
  RemoteEntry entry;
  while (parser.Next(entry)) Print(entry);
  return parser.Strange() + text.Dropped() == 0;
}

bool Carry(const Options& options) {
  if (options.command == "parse") return Parse(options.local);
  if (options.command == "get" || options.command == "put") return Transfer(options);
  if (options.command == "queue") return Queue(options);
  if (options.command == "chmod") return ChangeRights(options);
  return Operate(options);
}

bool Run(const Options& options) {
  const bool carried = Carry(options);
  // Transfers still say goodbye to the server, which changes nothing.
  (void)Background::WaitForNone(std::chrono::seconds(5));
  return carried;
}

}  // namespace
}  // namespace corvane::drive

int main(int argc, char** argv) {
  // A file beyond the limit that the system sets is a write that fails.
  std::signal(SIGXFSZ, [](int /*signal*/) {});
  std::string problem;
  const auto options = corvane::drive::Read({argv + 1, argv + argc}, problem);
  if (!options) {
    std::fputs(problem.empty() ? corvane::drive::kUsage : (problem + "\n").c_str(), stderr);
    return 2;
  }
  return corvane::drive::Run(*options) ? 0 : 1;
}
