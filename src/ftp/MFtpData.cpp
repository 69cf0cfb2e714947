#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "ftp/FtpCommand.h"
#include "ftp/FtpFailure.h"
#include "ftp/FtpFile.h"
#include "ftp/ListingParser.h"
#include "ftp/MFtp.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr std::string_view kRetrieve = "RETR ";
constexpr std::string_view kStore = "STOR ";
constexpr std::size_t kFirstBlock = std::size_t{64} * 1024;
constexpr std::size_t kMostBlock = std::size_t{1024} * 1024;
constexpr long kPatience = 700;  // milliseconds in which what belongs together arrives
constexpr std::size_t kBatch = 512;
constexpr char kSentinel = static_cast<char>(0xEC);

Outcome NotComplete(Outcome outcome) {
  if (outcome.IsDone()) outcome.kind = Outcome::Kind::Busy;
  outcome.text = Text("The listing is not complete: %1", outcome.text.Reason());
  return outcome;
}

// Hands a listing's entries over.
Outcome HandOver(ListingParser parser, std::size_t maxEntries, ListingSink& sink) {
  std::vector<RemoteEntry> batch;
  std::size_t count = 0;
  bool more = true;
  while (more) {
    batch.clear();
    batch.reserve(kBatch);
    RemoteEntry entry;
    while (batch.size() < kBatch && (more = parser.Next(entry))) {
      if (count == maxEntries) break;
      batch.push_back(entry);
      ++count;
    }
    const bool tooMany = more && batch.size() < kBatch;
    if (!batch.empty() && !sink.Add(std::move(batch))) return Outcome::Cancelled();
    if (tooMany) {
      return NotComplete({Outcome::Kind::Refused, 0, Text("it has more than 10,000,000 entries.")});
    }
  }
  if (parser.Known() == 0 && parser.Strange() > 0) {
    return {Outcome::Kind::Refused, 0,
            Text("The server's listing is in a form that is not understood.")};
  }
  if (parser.TooLong() == 0) return {};
  return {Outcome::Kind::Done, 0,
          Text("Entries with names longer than 4096 bytes are not shown: %1", parser.TooLong())};
}

}  // namespace

Outcome MFtp::SetBinary() {
  if (binary_) return {};
  Outcome outcome = FtpControl::CheckResult(control_.SendCommand("TYPE I"));
  binary_ = outcome.IsDone();
  return outcome;
}

// A server that cannot begin at an offset begins at the start. A marker that no transfer has used
// is taken back; where that fails the transfer would begin anywhere.
Outcome MFtp::SetOffset(std::int64_t offset, std::int64_t& accepted) {
  accepted = 0;
  if (offset == 0 && !markerSet_) return {};
  const bool armed = std::exchange(markerSet_, true);
  Outcome outcome =
      FtpControl::CheckResult(control_.SendCommand("REST " + std::to_string(offset)), {}, 3);
  if (outcome.IsDone()) accepted = offset;
  if (!outcome.IsDone() && (armed || outcome.kind == Outcome::Kind::Lost)) return outcome;
  markerSet_ = accepted > 0;
  return {};
}

Outcome MFtp::Open(const std::string& command, std::string_view logged, std::int64_t offset,
                   std::unique_ptr<RemoteFile>& file) {
  try {
    Outcome outcome = OpenThisWay(command, logged, offset, file);
    while (!outcome.IsDone() && data_.TryOtherWay())
      outcome = OpenThisWay(command, logged, offset, file);
    if (!outcome.IsDone()) data_.Close();
    return outcome;
  } catch (const FtpFailure&) {
    data_.Close();
    throw;
  }
}

Outcome MFtp::OpenThisWay(const std::string& command, std::string_view logged, std::int64_t offset,
                          std::unique_ptr<RemoteFile>& file) {
  if (Outcome outcome = data_.SetUp(); !outcome.IsDone()) return outcome;
  std::int64_t begin = 0;
  std::string line = command;
  const bool isStore = command.starts_with(kStore);
  const std::string name = isStore || command.starts_with(kRetrieve)
                               ? command.substr(command.find(' ') + 1)
                               : std::string();
  Outcome outcome = SetBinary();
  if (outcome.IsDone()) outcome = SetOffset(offset, begin);
  if (outcome.IsDone() && isStore && begin != offset) {
    outcome = MayAppend(name, offset);
    line = "APPE " + name;
    begin = offset;
  }
  if (!outcome.IsDone()) return outcome;
  auto sent = std::make_unique<FtpCommand>(control_, line, logged);
  outcome = data_.Open(*sent);
  if (!outcome.IsDone()) return outcome;
  markerSet_ = false;
  file = std::make_unique<FtpFile>(control_, data_, std::move(sent), begin, isStore,
                                   Errands({control_, data_, features_, *habits_}, name));
  return outcome;
}

// Where a file cannot be written from an offset on, it can be written on at its end.
Outcome MFtp::MayAppend(const std::string& name, std::int64_t offset) {
  const Reply reply = control_.SendCommand("SIZE " + name);
  if (reply.FileStatus() == offset) return {};
  if (Outcome asked = FtpControl::CheckResult(reply); asked.kind == Outcome::Kind::Lost)
    return asked;
  return {Outcome::Kind::Refused, reply.code,
          Text("The server cannot go on with a file that was sent in part.")};
}

Outcome MFtp::OpenForReading(const std::string& path, std::int64_t offset,
                             std::unique_ptr<RemoteFile>& file) {
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    return Open(std::string(kRetrieve) + name, {}, offset, file);
  });
}

Outcome MFtp::OpenForWriting(const std::string& path, std::int64_t offset,
                             std::unique_ptr<RemoteFile>& file) {
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    return Open(std::string(kStore) + name, {}, offset, file);
  });
}

Outcome MFtp::List(const std::string& path, ListingSink& sink) {
  Listing listing;
  Outcome fetched = control_.Guard([&]() -> Outcome {
    if (!Tell(Text("Getting Dir Listing."))) return Outcome::Cancelled();
    if (Outcome outcome = GoTo(path); !outcome.IsDone()) return outcome;
    return FetchListing(listing);
  });
  const bool ended =
      fetched.kind == Outcome::Kind::Lost || fetched.kind == Outcome::Kind::Cancelled;
  if (ended && listing.text.empty()) return fetched;
  return control_.Guard([&]() -> Outcome {
    sink.Raw(listing.text);
    Outcome understood =
        HandOver(ListingParser(listing.text, Today(), listing.form), maxEntries_, sink);
    return fetched.IsDone() ? understood : fetched;
  });
}

// A server that lists facts and then refuses them, but not a plain listing, is not asked again.
Outcome MFtp::FetchListing(Listing& listing) {
  if (!UsesFacts()) return FetchLines(listing);
  listing.form = ListingParser::Form::Facts;
  Outcome outcome = Fetch("MLSD", {}, listing.text);
  if (outcome.IsDone() && links_ == Links::Unknown) return LookForLinks(listing);
  if (outcome.kind != Outcome::Kind::Refused || !listing.text.empty()) return outcome;
  outcome = FetchLines(listing);
  if (outcome.IsDone()) features_.facts = false;
  return outcome;
}

// Many servers tell by facts where a link leads in place of the link. As long as they have told
// none, the plain listing is fetched too, unless that would take long; where that has links, it
// alone is believed from now on.
Outcome MFtp::LookForLinks(Listing& listing) {
  constexpr std::size_t kLong = std::size_t{4} * 1024 * 1024;
  bool any = false;
  ListingParser facts(listing.text, {}, listing.form);
  for (RemoteEntry entry; facts.Next(entry); any = true) {
    if (!entry.mode.starts_with('l')) continue;
    links_ = Links::Shown;
    return {};
  }
  if (!any || listing.text.size() > kLong) return {};
  Listing plain;
  Outcome outcome = FetchLines(plain);
  const bool hasNoLines = outcome.code == 500 || outcome.code == 502;
  if (!outcome.IsDone()) return hasNoLines ? Outcome() : outcome;
  ListingParser lines(plain.text, {});
  for (RemoteEntry entry; lines.Next(entry);) {
    const bool isLink = entry.kind == RemoteEntry::Kind::Link &&
                        (entry.mode.empty() || entry.mode.starts_with('l'));
    if (isLink) links_ = Links::Hidden;
  }
  if (links_ == Links::Hidden) listing = std::move(plain);
  return {};
}

// A server that refuses options gets the bare command from now on.
Outcome MFtp::FetchLines(Listing& listing) {
  constexpr int kUnavailable = 550;
  constexpr std::string_view kBare = "LIST";
  listing = {};
  Outcome outcome = Fetch(listCommand_, kBare, listing.text);
  if (outcome.code != kUnavailable || listCommand_ == kBare || !listing.text.empty())
    return outcome;
  listCommand_ = kBare;
  return Fetch(listCommand_, kBare, listing.text);
}

Outcome MFtp::FetchOnce(const std::string& command, std::string_view logged, std::string& text) {
  std::unique_ptr<RemoteFile> data;
  if (Outcome outcome = Open(command, logged, 0, data); !outcome.IsDone()) return outcome;
  Outcome outcome = ReadListing(*data, text);
  if (!outcome.IsDone()) return NotComplete(outcome);
  outcome = data->Finish();
  return outcome.IsDone() ? outcome : NotComplete(outcome);
}

// The data up to its end, carriage returns left out.
Outcome MFtp::ReadListing(RemoteFile& data, std::string& text) {
  std::vector<char> buffer(kFirstBlock);
  std::size_t received = 0;
  for (;;) {
    std::size_t count = 0;
    if (Outcome outcome = data.Read(buffer, count); !outcome.IsDone()) return outcome;
    if (count == 0) return {};
    received += count;
    const char last = buffer[count - 1];
    const auto begin = buffer.begin();
    text.append(begin, std::remove(begin, begin + static_cast<std::ptrdiff_t>(count), '\r'));
    if (received > maxListing_) {
      return {Outcome::Kind::Refused, 0, Text("the listing is larger than 1 GiB.")};
    }
    // The byte ends a listing where nothing follows it.
    if (last == kSentinel && !data.Wait(kPatience)) {
      return {Outcome::Kind::Busy, 0, Text("the server stopped in the middle.")};
    }
    if (count == buffer.size() && buffer.size() < kMostBlock) buffer.resize(buffer.size() * 2);
  }
}

}  // namespace corvane
