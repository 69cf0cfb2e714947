#include <array>
#include <utility>

#include "ftp/ListingFacts.h"
#include "ftp/ListingParser.h"
#include "ftp/MFtp.h"
#include "net/HostName.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr int kFileStatus = 213;  // RFC 3659
constexpr int kUnavailable = 550;

constexpr int kGone = 421;

// The facts of an MLST reply (RFC 3659, 7.2), which stand in its one line that begins with a blank.
bool ReadFacts(std::string_view reply, RemoteEntry& entry) {
  const std::size_t begin = reply.find("\n ");
  if (begin == std::string_view::npos) return false;
  reply.remove_prefix(begin + 2);
  return ReadFactsLine(reply.substr(0, reply.find('\n')), entry);
}

bool Ends(const Outcome& outcome) {
  return outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled;
}

}  // namespace

// Whoever logs in soon after another session has the same server before them.
void MFtp::AskFeatures(bool after) {
  if (knowsFeatures_) return;
  if (const auto told = habits_->Told(AskedAs("FEAT"))) {
    knowsFeatures_ = true;
    features_ = told->empty() ? FtpFeatures() : ReadFeatures(*told);
    return;
  }
  const Reply reply = control_.SendCommand("FEAT");
  knowsFeatures_ = after || reply.IsCompletion() || IsUnknownCommand(reply.code);
  const std::string text = reply.IsCompletion() ? reply.text : "";
  features_ = text.empty() ? FtpFeatures() : ReadFeatures(text);
  if (knowsFeatures_) habits_->NoteTold(AskedAs("FEAT"), text);
}

// A server that does not know the name serves the host that it serves where none is named.
void MFtp::NameHost() {
  const std::string& host = site_.host;
  const bool isAddress = host.find_first_not_of("0123456789.") == std::string::npos ||
                         host.find(':') != std::string::npos;
  if (features_.hosts && !isAddress) (void)control_.SendCommand("HOST " + asciiHost(host));
}

std::vector<std::string> MFtp::FeatureOptions() const {
  std::vector<std::string> options;
  if (features_.utf8) options.emplace_back("OPTS UTF8 ON");
  if (features_.facts && !features_.neededFacts.empty())
    options.push_back("OPTS MLST " + features_.neededFacts);
  return options;
}

// By facts where listings come by them; otherwise the size tells that it is a file, and the rest is
// taken from its line of a listing where there is one, so that a row that is renewed looks as its
// neighbours do: facts and MDTM tell the time in another zone than listings.
Outcome MFtp::Stat(const std::string& path, RemoteEntry& entry) {
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    entry = {.name = name};
    bool known = false;
    if (UsesFacts()) {
      Outcome outcome = TakeFromFacts(entry, known);
      if (!outcome.IsDone() || known) return outcome;
    }
    Outcome outcome = Size(path, entry.size);
    if (Ends(outcome)) return outcome;
    const bool mayBeFile = outcome.code != kUnavailable;
    known = entry.size.has_value();
    if (outcome = TakeFromListing(entry, mayBeFile, known); Ends(outcome)) return outcome;
    if (!known) {
      return {Outcome::Kind::Refused, 0, Text("The server does not tell about %1.", name)};
    }
    if (!entry.modified) return AskTime(name, entry.modified);
    return {};
  });
}

// As long as the server has told no link by facts, a link may pass for what it leads to.
Outcome MFtp::TakeFromFacts(RemoteEntry& entry, bool& known) {
  RemoteEntry told;
  const Reply reply = control_.SendCommand("MLST " + entry.name);
  if (reply.code == kUnavailable) return FtpControl::CheckResult(reply);
  known = reply.IsCompletion() && ReadFacts(reply.text, told);
  if (!known) return {};
  told.name = entry.name;
  if (told.mode.starts_with('l')) links_ = Links::Shown;
  if (links_ == Links::Unknown) {
    RemoteEntry line{.name = entry.name};
    bool isLink = false;
    if (Outcome outcome = TakeFromListing(line, false, isLink); Ends(outcome)) return outcome;
    if (isLink && line.mode.starts_with('l')) {
      links_ = Links::Hidden;
      told = std::move(line);
    }
  }
  entry = std::move(told);
  return {};
}

// A server that does not know the option lists what is in a directory; what is then found under its
// own name counts only where it is not a file.
Outcome MFtp::TakeFromListing(RemoteEntry& entry, bool mayBeFile, bool& known) {
  const std::string options = listCommand_ == "LIST -la" ? "LIST -lad " : "LIST ";
  const std::string_view dash = entry.name.starts_with('-') ? "./" : "";
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = Open(options + std::string(dash) + entry.name, {}, 0, data);
  if (!outcome.IsDone()) return outcome;
  ListingText text;
  outcome = ReadListing(*data, text);
  if (outcome.IsDone()) outcome = data->Finish();
  if (!outcome.IsDone()) return outcome;
  ListingParser lines(text.View(), Today());
  RemoteEntry line;
  RemoteEntry more;
  if (!lines.Next(line) || lines.Next(more)) return outcome;
  const bool same = SplitPath(line.name).second == entry.name;
  const bool isFile = line.kind == RemoteEntry::Kind::File;
  if (line.unclear || !same || (isFile ? !mayBeFile : entry.size.has_value())) return outcome;
  known = true;
  line.name = std::exchange(entry.name, {});
  if (entry.size) line.size = entry.size;
  entry = std::move(line);
  return outcome;
}

Outcome MFtp::ModifiedTime(const std::string& path, std::optional<RemoteTime>& time) {
  time.reset();
  return control_.Guard([&]() -> Outcome {
    if (!UsesFacts() && !features_.modifiedTime) return {};
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    if (!UsesFacts()) return AskTime(name, time);
    RemoteEntry entry;
    const Reply reply = control_.SendCommand("MLST " + name);
    if (reply.IsCompletion() && ReadFacts(reply.text, entry)) time = entry.modified;
    return time ? Outcome() : AskTime(name, time);
  });
}

Outcome MFtp::AskTime(const std::string& name, std::optional<RemoteTime>& time) {
  const auto command = AskTimeCommand(features_, name);
  if (!command) return {};
  const Reply reply = control_.SendCommand(*command);
  if (reply.code == kFileStatus) time = ReadTimeVal(reply.lastText);
  if (IsUnknownCommand(reply.code)) features_.modifiedTime = false;
  if (reply.code == kGone) return FtpControl::CheckResult(reply);
  return {};
}

// A way that the server turns out not to know is not tried again on this connection.
Outcome MFtp::SetModifiedTime(const std::string& path, std::int64_t seconds) {
  const Text failed("The server cannot set a file's time.");
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (TimeCommand(features_, name, seconds)) {
      if (Outcome there = GoTo(directory); !there.IsDone()) return there;
    }
    Outcome outcome{Outcome::Kind::Refused, 0, failed};
    while (const auto command = TimeCommand(features_, name, seconds)) {
      const Reply reply = control_.SendCommand(*command);
      outcome = FtpControl::CheckResult(reply, failed);
      if (!IsUnknownCommand(reply.code)) break;
      DropTimeCommand(features_);
    }
    return outcome;
  });
}

Outcome MFtp::KeepAlive() {
  return control_.Guard(
      [this]() -> Outcome { return FtpControl::CheckResult(control_.SendCommand("NOOP")); });
}

Outcome MFtp::CanCopy(bool& can) {
  can = false;
  return control_.Guard([&]() -> Outcome { return can = features_.copy, Outcome(); });
}

Outcome MFtp::Copy(const std::string& from, const std::string& to) {
  return InTwoSteps("SITE CPFR ", "SITE CPTO ", from, to,
                    Text("\"%1\" was not copied.", SplitPath(from).second));
}

// A server that has refused to tell of a quota is not asked again.
Outcome MFtp::FreeSpace(const std::string& path, std::optional<std::int64_t>& bytes) {
  bytes.reset();
  return control_.Guard([&]() -> Outcome {
    if (features_.room) {
      if (Outcome outcome = GoTo(path); !outcome.IsDone()) return outcome;
      const Reply reply = control_.SendCommand("AVBL");
      bytes = reply.FileStatus();
      return FtpControl::CheckResult(reply);
    }
    if (!asksQuota_) return {};
    const Reply reply = control_.SendCommand("SITE QUOTA");
    if (reply.IsCompletion()) bytes = ReadQuota(reply.text);
    asksQuota_ = bytes.has_value();
    return {};
  });
}

}  // namespace corvane
