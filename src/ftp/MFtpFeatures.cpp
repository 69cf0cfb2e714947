#include <algorithm>
#include <utility>

#include "ftp/ListingParser.h"
#include "ftp/MFtp.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr int kFileStatus = 213;  // RFC 3659
constexpr int kUnavailable = 550;

bool Ends(const Outcome& outcome) {
  return outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled;
}

}  // namespace

// Asked once on each connection, when it is first needed.
const FtpFeatures& MFtp::Features() {
  if (!features_) {
    const Reply reply = control_.SendCommand("FEAT");
    features_ = reply.IsCompletion() ? ReadFeatures(reply.text) : FtpFeatures();
  }
  return *features_;
}

// What it is tells MLST, or that it has a size. The rest is taken from its line of a listing where
// there is one, so that a row that is renewed looks as its neighbours do: listings tell the time in
// the server's zone, MLST and MDTM do not.
Outcome MFtp::Stat(const std::string& path, RemoteEntry& entry) {
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    entry = {.name = name};
    bool known = false;
    bool mayBeFile = true;
    if (Features().facts) {
      const Reply reply = control_.SendCommand("MLST " + name);
      known = reply.IsCompletion() && ReadFacts(reply.text, entry);
      if (reply.code == kUnavailable) return FtpControl::CheckResult(reply);
      mayBeFile = !known || entry.kind == RemoteEntry::Kind::File;
    }
    if (!known) {
      Outcome outcome = Size(path, entry.size);
      if (Ends(outcome)) return outcome;
      mayBeFile = outcome.code != kUnavailable;
      known = entry.size.has_value();
    }
    if (Outcome outcome = TakeFromListing(entry, mayBeFile, known); Ends(outcome)) return outcome;
    if (!known) {
      return {Outcome::Kind::Refused, 0, Text("The server does not tell about %1.", name)};
    }
    if (!entry.modified) {
      const Reply reply = control_.SendCommand("MDTM " + name);
      if (reply.code == kFileStatus) entry.modified = ReadTimeVal(reply.lastText);
    }
    return {};
  });
}

// A server that does not know the option lists what is in a directory; what is then found under its
// own name counts only where it is not a file.
Outcome MFtp::TakeFromListing(RemoteEntry& entry, bool mayBeFile, bool& known) {
  const std::string options = listCommand_ == "LIST -la" ? "LIST -lad " : "LIST ";
  const std::string_view dash = entry.name.starts_with('-') ? "./" : "";
  std::unique_ptr<RemoteFile> data;
  Outcome outcome = Open(options + std::string(dash) + entry.name, {}, 0, data);
  if (!outcome.IsDone()) return outcome;
  std::string text;
  outcome = ReadListing(*data, text);
  if (outcome.IsDone()) outcome = data->Finish();
  if (!outcome.IsDone()) return outcome;
  ListingParser lines(text, Today());
  RemoteEntry line;
  RemoteEntry more;
  if (!lines.Next(line) || lines.Next(more)) return outcome;
  const bool same = SplitPath(line.name).second == entry.name;
  const bool isFile = line.kind == RemoteEntry::Kind::File;
  if (!same || (isFile ? !mayBeFile : entry.size.has_value())) return outcome;
  known = true;
  line.name = std::exchange(entry.name, {});
  if (entry.size) line.size = entry.size;
  entry = std::move(line);
  return outcome;
}

Outcome MFtp::CanCopy(bool& can) {
  can = false;
  return control_.Guard([&]() -> Outcome { return can = Features().copy, Outcome(); });
}

Outcome MFtp::Copy(const std::string& from, const std::string& to) {
  return InTwoSteps("SITE CPFR ", "SITE CPTO ", from, to,
                    Text("\"%1\" was not copied.", SplitPath(from).second));
}

// A server that has refused to tell of a quota is not asked again.
Outcome MFtp::FreeSpace(const std::string& path, std::optional<std::int64_t>& bytes) {
  bytes.reset();
  return control_.Guard([&]() -> Outcome {
    if (Features().room) {
      if (Outcome outcome = GoTo(path); !outcome.IsDone()) return outcome;
      const Reply reply = control_.SendCommand("AVBL");
      if (reply.code == kFileStatus) bytes = NumberOf(reply);
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
