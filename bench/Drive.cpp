// The client without windows: the session and the workers that the windows use, for benchmarks,
// fault tests and scripts.

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "DriveOptions.h"
#include "ftp/ListingParser.h"
#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "workers/FileTransfer.h"
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

// The text's own line ends stay; all else that is hostile becomes visible.
void Complain(const Text& text) {
  std::istringstream lines(text.English());
  for (std::string line; std::getline(lines, line);)
    std::fprintf(stderr, "%s\n", DisplayText(line).c_str());
}

class Printer final : public ListingSink {
 public:
  void Raw(std::string_view /*text*/) override {}
  bool Add(std::vector<RemoteEntry> entries) override {
    for (const RemoteEntry& entry : entries) Print(entry);
    return true;
  }
};

/// A transfer's row that nobody sees; also the owner of a session without a transfer.
class Row final : public TransferUi {
 public:
  explicit Row(bool trustsAny) : trustsAny_(trustsAny) {}

  TransferProgress& Progress() override { return progress_; }
  bool BeginFile(std::string_view /*name*/) override { return true; }
  bool SetTrailing(const Text& /*text*/) override { return true; }
  bool SetStatus(const Text& /*text*/) override { return true; }
  bool AppendLog(std::string_view /*line*/) override { return true; }
  bool PostMessage(Message /*message*/) override { return true; }
  bool PlaySound(Sound /*sound*/) override { return true; }
  bool Ask(const std::shared_ptr<UserQuestion>& question) override {
    using Answer = UserQuestion::Answer;
    const bool certificate = question->About().kind == UserQuestion::Kind::UnknownCertificate;
    question->Give(trustsAny_ && certificate ? Answer::Once : Answer::No);
    return true;
  }
  bool NoteEntry(const Text& text) override {
    Complain(text);
    return true;
  }
  bool SetEndState(TransferEnd state, const Text& why) override {
    const std::lock_guard hold(lock_);
    ended_ = true;
    state_ = state;
    why_ = why;
    changed_.notify_all();
    return true;
  }

  /// False when `limit` passed first.
  bool WaitFor(std::chrono::milliseconds limit) {
    std::unique_lock hold(lock_);
    return changed_.wait_for(hold, limit, [this] { return ended_; });
  }
  /// Once it has ended.
  [[nodiscard]] TransferEnd State() const { return state_; }
  [[nodiscard]] const Text& Why() const { return why_; }

 private:
  const bool trustsAny_;
  TransferProgress progress_;
  std::mutex lock_;
  std::condition_variable changed_;
  bool ended_ = false;
  TransferEnd state_ = TransferEnd::Failed;
  Text why_;
};

transferStruct Description(const Options& options) {
  transferStruct what;
  what.site = options.site;
  what.download = options.command == "get";
  what.keepTimes = true;
  TransferJob job;
  job.policy = options.policy;
  if (what.download) {
    const auto [directory, name] = SplitPath(options.site.path);
    what.remoteDirectory = directory;
    what.targetFolder = options.local;
    job.remote = WithoutTrailingSlash(options.site.path);
    job.local = PathBelow(options.local, name);
    if (options.site.path.ends_with('/')) job.kind = RemoteEntry::Kind::Directory;
  } else {
    what.remoteDirectory = options.site.path;
    job.local = WithoutTrailingSlash(options.local);
    job.remote = PathBelow(options.site.path, std::filesystem::path(job.local).filename().string());
  }
  what.jobs.push_back(std::move(job));
  return what;
}

bool Transfer(const Options& options) {
  constexpr std::chrono::hours kLong{24};
  const auto row = std::make_shared<Row>(options.trustsAny);
  const auto begin = std::chrono::steady_clock::now();
  const auto worker = std::make_shared<FileTransfer>(row, Description(options),
                                                     std::make_shared<MFtp>(options.site, row));
  if (!worker->Run()) return false;
  if (!row->WaitFor(options.cancelAfter.value_or(kLong))) worker->Cancel();
  row->WaitFor(kLong);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  const bool finished = row->State() == TransferEnd::Finished;
  const Text why = row->State() == TransferEnd::Cancelled ? Text("Cancelled.") : row->Why();
  if (!finished) Complain(why);
  if (options.json) {
    std::printf("{\"finished\":%s,\"seconds\":%.3f,\"why\":%s}\n", finished ? "true" : "false",
                seconds.count(), Quoted(DisplayText(why.English())).c_str());
  }
  // It still says goodbye to the server, which changes nothing.
  (void)Background::WaitForNone(std::chrono::seconds(5));
  return finished;
}

Outcome Remove(MFtp& session, Row& row, const std::string& path) {
  const auto [directory, name] = SplitPath(path);
  Refusals refused;
  TreeRemover remover(session, row, refused, directory);
  const auto kind = path.ends_with('/') ? RemoteEntry::Kind::Directory : RemoteEntry::Kind::File;
  if (remover.Remove(name, kind)) return {};
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
  const auto row = std::make_shared<Row>(options.trustsAny);
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
  std::string text{std::istreambuf_iterator<char>(file), {}};
  std::erase(text, '\r');
  ListingParser parser(text, Today());
  RemoteEntry entry;
  while (parser.Next(entry)) Print(entry);
  return parser.Strange() == 0;
}

bool Run(const Options& options) {
  if (options.command == "parse") return Parse(options.local);
  if (options.command == "get" || options.command == "put") return Transfer(options);
  return Operate(options);
}

}  // namespace
}  // namespace corvane::drive

int main(int argc, char** argv) {
  std::string problem;
  const auto options = corvane::drive::Read({argv + 1, argv + argc}, problem);
  if (!options) {
    std::fputs(problem.empty() ? corvane::drive::kUsage : (problem + "\n").c_str(), stderr);
    return 2;
  }
  return corvane::drive::Run(*options) ? 0 : 1;
}
