// Whatever a server tells of its directories: changing the permissions of a tree and deleting it
// end, within their bounds, and touch only what was listed below the place that was chosen. The
// input is one directory after another, parted by empty lines: lines of facts, or "@" and where the
// server says that it stands, or "!" where it refuses. With "*" at the front there is no end to
// them.
#include <map>
#include <set>

#include "Fuzz.h"
#include "ftp/ListingParser.h"
#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "workers/RightsChanger.h"
#include "workers/TreeRemover.h"

namespace {

using namespace corvane;
using Path = const std::string&;
using Each = const std::function<bool(std::size_t, const Outcome&)>&;
using File = std::unique_ptr<RemoteFile>;

Outcome No() {
  return {Outcome::Kind::Refused, 550, Text("no")};
}

/// A session with the server of the input, on one thread at a time.
class Server final : public RemoteSession {
 public:
  explicit Server(std::string_view input)
      : endless_(input.starts_with('*')), input_(input.substr(endless_ ? 1 : 0)), left_(input_) {}

  std::size_t listings = 0;

  Outcome Connect() override { return {}; }
  void Quit() override {}
  const std::string& Host() const override { return host_; }
  const std::string& Directory() const override { return host_; }
  Outcome Enter(const std::string& path, std::string& where) override {
    Check(path == "/base/top" || known_.contains(path + "/"));
    if (left_.empty() && endless_) left_ = input_;
    if (left_.empty()) return No();
    now_ = corvane::Take(left_, "\n\n");
    if (now_.starts_with('!')) return No();
    where = now_.starts_with('@') ? now_.substr(1, now_.find('\n') - 1) : path;
    entered_[path] = where;
    here_ = path == where || !where.starts_with('/') ? where : "elsewhere";
    return {};
  }
  Outcome List(const std::string& path, ListingSink& sink) override {
    Check(path == here_ && ++listings < 3000);
    ListingParser parser(now_, {}, ListingParser::Form::Facts);
    std::vector<RemoteEntry> entries;
    for (RemoteEntry entry; parser.Next(entry);) {
      if (entry.kind != RemoteEntry::Kind::Link && entry.name.find('/') == std::string::npos)
        known_.insert(PathBelow(path, entry.name) +
                      (entry.kind == RemoteEntry::Kind::Directory ? "/" : ""));
      standing_.insert(PathBelow(path, entry.name));
      entries.push_back(entry);
    }
    if (parser.Strange() > 0) standing_.insert(PathBelow(path, "a strange line"));
    sink.Add(std::move(entries));
    return parser.Strange() == 0 ? Outcome() : No();
  }
  Outcome RemoveDirectory(const std::string& path) override {
    Check(path == "/base/top" || known_.contains(path + "/"));
    const std::string inside = PathBelow(entered_.at(path), "");
    const auto left = standing_.lower_bound(inside);
    Check(left == standing_.end() || !left->starts_with(inside));
    standing_.erase(path);
    return {};
  }
  Outcome RemoveFiles(std::span<const std::string> paths, Each each) override {
    for (std::size_t i = 0; i < paths.size(); ++i) {
      const bool stays = paths[i].ends_with('x');
      Check(known_.contains(paths[i]));
      if (!stays) standing_.erase(paths[i]);
      if (!each(i, stays ? No() : Outcome())) break;
    }
    return {};
  }
  Outcome ChangeModes(std::span<const ModeChange> changes, Each each) override {
    for (std::size_t i = 0; i < changes.size(); ++i) {
      const std::string& path = changes[i].path;
      Check(path == "/base/top" || known_.contains(path) || known_.contains(path + "/"));
      if (!each(i, {})) break;
    }
    return {};
  }
  // Nothing else is asked for.
  Outcome Size(Path, std::optional<std::int64_t>&) override { return No(); }
  Outcome Exists(Path, bool&) override { return No(); }
  Outcome Stat(Path, RemoteEntry&) override { return No(); }
  Outcome CanCopy(bool&) override { return No(); }
  Outcome Copy(Path, Path) override { return No(); }
  Outcome FreeSpace(Path, std::optional<std::int64_t>&) override { return No(); }
  Outcome ModifiedTime(Path, std::optional<RemoteTime>&) override { return No(); }
  Outcome SetModifiedTime(Path, std::int64_t) override { return No(); }
  bool SetsTimes() const override { return false; }
  Outcome MakeDirectory(Path) override { return No(); }
  Outcome RemoveFile(Path) override { return No(); }
  Outcome Rename(Path, Path) override { return No(); }
  Outcome OpenForReading(Path, std::int64_t, File&) override { return No(); }
  Outcome OpenForWriting(Path, std::int64_t, File&) override { return No(); }
  DigestKind OffersDigest() const override { return DigestKind::None; }
  Outcome Checksum(Path, std::int64_t, DigestKind, std::string&) override { return No(); }
  bool IsLost() const override { return false; }
  const Loss& HowLost() const override { return loss_; }
  bool IsAlive() override { return true; }
  Outcome KeepAlive() override { return {}; }
  std::uint64_t Answers() const override { return 0; }
  void Close() override {}
  void Interrupt() override {}
  void Resume() override {}

 private:
  const bool endless_;
  const std::string_view input_;
  std::string_view left_;
  std::string_view now_;                        // what the directory that was entered holds
  std::string here_;                            // where that may be acted on
  std::set<std::string> known_;                 // what was listed, directories with a slash
  std::set<std::string> standing_;              // what was listed and not removed
  std::map<std::string, std::string> entered_;  // where the server stood then
  const std::string host_ = "host";
  const Loss loss_;
};

struct Notes final : WalkUi {
  int ended = 0;
  bool Found(std::vector<FoundEntry> /*entries*/) override { return true; }
  void Ended(const WalkEnd& /*end*/) override { ++ended; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto window = std::make_shared<Nobody>();
  const auto server = std::make_shared<Server>(input);
  const auto notes = std::make_shared<Notes>();
  const auto pool =
      std::make_shared<SessionPool>([server](const Site&, auto&&, auto&&) { return server; });
  const RemoteEntry top{.name = "top", .kind = RemoteEntry::Kind::Directory, .mode = "drwxr-xr-x"};
  const auto walk =
      std::make_shared<RightsChanger>(TreeWalk::Ways{{}, pool, nullptr, window, 1}, notes,
                                      RightsOrder{.directory = "/base",
                                                  .entries = {top},
                                                  .rights = RightsChange{07777, 0},
                                                  .below = RightsOrder::Below::Everything});
  constexpr std::int64_t kEntries = 200;
  walk->limits = {.entries = kEntries, .depth = 8};
  pool->Close();  // so that no thread of its own waits for what it keeps
  Check(walk->Run() && Background::WaitForNone(std::chrono::seconds(20)) && notes->ended == 1);
  Check(notes->progress.files + notes->progress.folders <= kEntries);

  // Nothing but its depth bounds this one.
  if (input.starts_with('*')) return 0;
  Server another(input);
  Refusals refused;
  TreeRemover(another, *window, refused, "/base").RemoveDirectory("top");
  Check(another.listings <= size + 1);
  return 0;
}
