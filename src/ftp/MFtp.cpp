#include "ftp/MFtp.h"

#include <algorithm>
#include <utility>

#include "ftp/AskTogether.h"
#include "ftp/FtpCommand.h"
#include "net/NLLookup.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

// A path with a last ".." or "." carried out.
std::string Resolved(const std::string& path) {
  const auto [directory, name] = SplitPath(path);
  if (name == ".") return directory;
  if (name != "..") return WithoutTrailingSlash(path);
  return directory == "/" ? directory : SplitPath(directory).first;
}

// Looks for a name in a listing.
class NameSeeker final : public ListingSink {
 public:
  explicit NameSeeker(const std::string& name) : name_(name) {}

  void Raw(std::string_view /*text*/) override {}
  bool Add(std::vector<RemoteEntry> entries) override {
    found_ = found_ || std::ranges::any_of(entries, [this](const RemoteEntry& entry) {
               return entry.name == name_;
             });
    return true;
  }
  [[nodiscard]] bool Found() const { return found_; }

 private:
  const std::string& name_;
  bool found_ = false;
};

}  // namespace

MFtp::MFtp(Site site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<ServerTrust> trust,
           std::shared_ptr<Habits> habits)
    : site_(std::move(site)),
      owner_(std::move(owner)),
      trust_(std::move(trust)),
      sharesHabits_(habits != nullptr),
      habits_(habits ? std::move(habits) : std::make_shared<Habits>()),
      control_([this](std::string_view line) { owner_->AppendLog(line); }),
      data_(control_, *habits_, site_.passive) {}

MFtp::~MFtp() = default;

void MFtp::Close() {
  control_.Close();
  data_.Abort();
  const MutexLock hold(reach_);
  if (lookup_) lookup_->cancel();
}

void MFtp::Interrupt() {
  control_.SetInterrupted(true);
  data_.Abort();
  const MutexLock hold(reach_);
  if (lookup_) lookup_->cancel();
}

// The reply is waited for as after an interruption: only a moment.
void MFtp::Quit() {
  (void)control_.Guard([this]() -> Outcome {
    FtpCommand quit(control_, "QUIT");
    control_.SetInterrupted(true);
    quit.Hurry();
    control_.SayEnd();
    return {};
  });
  control_.SetInterrupted(false);
}

Outcome MFtp::ChangeDir(std::string_view argument) {
  const std::string line = "CWD " + std::string(argument);
  const Text failed("The directory cannot be opened.");
  path_.reset();
  if (entering_) return ChangeDirAndAsk(line, failed);
  return FtpControl::CheckResult(control_.SendCommand(line), failed);
}

Outcome MFtp::ChangeDirAndAsk(const std::string& line, const Text& failed) {
  std::vector<std::string> questions = {line, "PWD"};
  if (const std::string_view port = data_.PortCommandAhead(); !port.empty())
    questions.emplace_back(port);
  std::vector<Reply> replies;
  if (TryTogether(control_, *habits_, questions, false, replies)) {
    path_ = replies[1];
    if (replies.size() > 2) data_.TakePortAhead(replies[2]);
  }
  if (replies.empty()) replies.push_back(control_.SendCommand(line));
  return FtpControl::CheckResult(replies.front(), failed);
}

Outcome MFtp::GoTo(const std::string& path) {
  const std::string directory = path.empty() ? start_ : WithoutTrailingSlash(path);
  if (cwd_ == directory) return {};
  const std::optional<std::string> here = std::exchange(cwd_, std::nullopt);
  Outcome outcome = Go(here, directory);
  if (outcome.IsDone()) cwd_ = directory;
  // A server that refuses stays where it was, unless it was to go in several steps.
  if (outcome.kind == Outcome::Kind::Refused && !cwd_) cwd_ = here;
  return outcome;
}

// From where the server stands one step is said by its name alone: not every server takes paths as
// this program writes them. What does not begin with a slash is a server's own form, or lies below
// the place where the connection began and the server does not tell where that is.
Outcome MFtp::Go(const std::optional<std::string>& here, const std::string& directory) {
  const auto [above, name] = SplitPath(directory);
  const bool absolute = directory.starts_with('/');
  if (here && !here->empty() && *here != "/" && SplitPath(*here).first == directory) {
    Outcome up = ChangeDir("..");
    if (up.IsDone() || !absolute) return up;
  }
  if (here && above == *here && !name.empty()) return ChangeDir(name);
  if (absolute || (start_ == directory && !directory.empty())) return ChangeDir(directory);
  // Nothing leads from an absolute path to a place whose path is not known.
  if (directory.empty() && (!here || here->starts_with('/'))) {
    return {Outcome::Kind::Refused, 0, Text("The server does not lead back to its directory")};
  }
  if (directory.empty()) {
    cwd_ = here;
    if (Outcome up = GoTo(SplitPath(*here).first); !up.IsDone()) return up;
    return GoTo(directory);
  }
  cwd_ = here;
  if (Outcome up = GoTo(above.empty() && !start_.empty() ? start_ : above); !up.IsDone()) return up;
  return ChangeDir(name);
}

// The server is asked even where it stands at the path already, unless it named the path itself: a
// link may have led there.
Outcome MFtp::Enter(const std::string& path, std::string& where) {
  return control_.Guard([&]() -> Outcome {
    if (cwd_ != told_ || cwd_ != WithoutTrailingSlash(path)) {
      path_.reset();
      entering_ = true;
      Outcome outcome = control_.Guard([&] { return GoTo(path); });
      entering_ = false;
      if (!outcome.IsDone()) return outcome;
      cwd_ = (path_ ? PathIn(*path_) : AskPath()).value_or(Resolved(*cwd_));
    }
    told_ = *cwd_;
    where = told_;
    return {};
  });
}

Outcome MFtp::Command(std::string_view verb, const std::string& path, const Text& failed) {
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    const Reply reply = control_.SendChange(std::string(verb) + " " + name);
    return FtpControl::CheckResult(reply, failed);
  });
}

Outcome MFtp::Size(const std::string& path, std::optional<std::int64_t>& size) {
  size.reset();
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    const Reply reply = control_.SendCommand("SIZE " + name);
    size = reply.FileStatus();
    return FtpControl::CheckResult(reply);
  });
}

// Most servers tell by the size; the others by their listing.
Outcome MFtp::Exists(const std::string& path, bool& exists) {
  constexpr int kUnavailable = 550;
  std::optional<std::int64_t> size;
  Outcome outcome = Size(path, size);
  exists = size.has_value();
  if (exists || outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled)
    return outcome;
  if (outcome.code == kUnavailable) return {};
  const auto [directory, name] = SplitPath(path);
  NameSeeker seeker(name);
  outcome = List(directory, seeker);
  exists = seeker.Found();
  return outcome;
}

Outcome MFtp::MakeDirectory(const std::string& path) {
  return Command("MKD", path,
                 Text("The directory \"%1\" was not created.", SplitPath(path).second));
}

Outcome MFtp::RemoveDirectory(const std::string& path) {
  return Command("RMD", path, {});
}

Outcome MFtp::RemoveFile(const std::string& path) {
  return Command("DELE", path, {});
}

// A target that cannot be sent is noticed before the server has been told of anything.
Outcome MFtp::InTwoSteps(std::string_view first, std::string_view second, const std::string& from,
                         const std::string& to, const Text& failed) {
  return control_.Guard([&]() -> Outcome {
    FtpControl::CheckLine(to);
    const auto [directory, name] = SplitPath(from);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    const Reply reply = control_.SendCommand(std::string(first) + name);
    if (Outcome outcome = FtpControl::CheckResult(reply, failed, 3); !outcome.IsDone())
      return outcome;
    const auto [there, newName] = SplitPath(to);
    const std::string target = cwd_ == there ? newName : to;
    return FtpControl::CheckResult(control_.SendChange(std::string(second) + target), failed);
  });
}

Outcome MFtp::Rename(const std::string& from, const std::string& to) {
  return InTwoSteps("RNFR ", "RNTO ", from, to,
                    Text("\"%1\" was not renamed.", SplitPath(from).second));
}

}  // namespace corvane
