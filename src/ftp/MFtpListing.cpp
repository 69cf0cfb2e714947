#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "ftp/ListingParser.h"
#include "ftp/ListingText.h"
#include "ftp/ListingWords.h"
#include "ftp/MFtp.h"
#include "util/Digest.h"
#include "util/ErrorText.h"

namespace corvane {
namespace {

constexpr std::size_t kFirstBlock = std::size_t{64} * 1024;
constexpr std::size_t kMostBlock = std::size_t{1024} * 1024;
constexpr long kPatience = 700;  // milliseconds in which what belongs together arrives
constexpr std::size_t kBatch = 512;
constexpr int kNoFiles = 450;
constexpr char kSentinel = static_cast<char>(0xEC);

Outcome NotComplete(Outcome outcome) {
  if (outcome.IsDone()) outcome.kind = Outcome::Kind::Busy;
  outcome.text = Text("The listing is not complete: %1", outcome.text.Reason());
  return outcome;
}

// What the user should know of a listing that came whole.
Outcome Verdict(const ListingParser& parser, std::size_t dropped) {
  const bool any = parser.Known() > parser.Unclear();
  if (!any && parser.Known() + parser.Strange() + dropped > 0) {
    return {Outcome::Kind::Refused, 0,
            Text("The server's listing is in a form that is not understood.")};
  }
  std::vector<Text> remarks;
  if (const std::size_t count = parser.TooLong().size() + dropped; count > 0)
    remarks.push_back(Text("Entries with names longer than 4096 bytes are not shown: %1", count));
  if (parser.Unclear() > 0)
    remarks.push_back(Text("Entries whose names the listing does not tell: %1", parser.Unclear()));
  if (parser.Strange() > 0)
    remarks.push_back(Text("Lines of the listing that are not understood: %1", parser.Strange()));
  if (remarks.empty()) return {};
  return {Outcome::Kind::Done, 0, Text::Lines(std::move(remarks))};
}

// Hands a listing's entries over.
Outcome HandOver(ListingParser parser, std::size_t dropped, std::size_t maxEntries,
                 ListingSink& sink) {
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
  for (const RemoteEntry& entry : parser.TooLong()) sink.AddTooLong(entry);
  return Verdict(parser, dropped);
}

bool HoldsEntries(const ListingText& text) {
  ListingParser parser(text.View(), Today());
  for (RemoteEntry entry; parser.Next(entry) && entry.unclear;) {
  }
  return parser.Known() > parser.Unclear();
}

std::vector<std::string> NamesIn(ListingParser parser) {
  std::vector<std::string> names;
  for (RemoteEntry entry; parser.Next(entry);)
    if (!entry.unclear) names.push_back(entry.name);
  std::ranges::sort(names);
  return names;
}

std::string DigestOf(const ListingText& text) {
  Digest digest(DigestKind::Sha256);
  digest.Add(text.View());
  return digest.Take();
}

// Some servers end a listing at a number of entries, and say so as if all were well.
bool SaysCut(std::string words) {
  std::ranges::transform(words, words.begin(), [](char c) { return Lower(c); });
  return words.find("truncated") != std::string::npos;
}

}  // namespace

Outcome MFtp::List(const std::string& path, ListingSink& sink) {
  Listing listing;
  Outcome fetched = control_.Guard([&]() -> Outcome {
    if (!Tell(Text("Getting Dir Listing."))) return Outcome::Cancelled();
    if (Outcome outcome = GoTo(path); !outcome.IsDone()) return outcome;
    return FetchListing(listing);
  });
  const bool ended =
      fetched.kind == Outcome::Kind::Lost || fetched.kind == Outcome::Kind::Cancelled;
  if (ended && listing.text.IsEmpty()) return fetched;
  return control_.Guard([&]() -> Outcome {
    const std::string_view text = listing.text.View();
    sink.Raw(text);
    Outcome understood = HandOver(ListingParser(text, Today(), listing.form),
                                  listing.text.Dropped(), maxEntries_, sink);
    return fetched.IsDone() ? understood : fetched;
  });
}

// A server that lists facts and then refuses them, but not a plain listing, is not asked again.
Outcome MFtp::FetchListing(Listing& listing) {
  if (!UsesFacts()) return FetchLines(listing);
  listing.form = ListingParser::Form::Facts;
  Outcome outcome = Fetch("MLSD", {}, listing);
  if (outcome.IsDone() && links_ == Links::Unknown) return LookForLinks(listing);
  if (outcome.kind != Outcome::Kind::Refused || !listing.text.IsEmpty()) return outcome;
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
  ListingParser facts(listing.text.View(), {}, listing.form);
  for (RemoteEntry entry; facts.Next(entry); any = true) {
    if (!entry.mode.starts_with('l')) continue;
    links_ = Links::Shown;
    return {};
  }
  if (!any || listing.text.View().size() > kLong) return {};
  Listing plain;
  Outcome outcome = FetchLines(plain);
  const bool hasNoLines = outcome.code == 500 || outcome.code == 502;
  if (!outcome.IsDone()) return hasNoLines ? Outcome() : outcome;
  ListingParser lines(plain.text.View(), Today());
  for (RemoteEntry entry; lines.Next(entry);) {
    const bool isLink = entry.kind == RemoteEntry::Kind::Link && !entry.unclear &&
                        (entry.mode.empty() || entry.mode.starts_with('l'));
    if (isLink) links_ = Links::Hidden;
  }
  if (links_ == Links::Hidden) listing = std::move(plain);
  return {};
}

// A server that does not know the options refuses them, or takes them for a name and lists nothing,
// not even the directory itself. Where more comes without them they are left out from now on.
Outcome MFtp::FetchLines(Listing& listing) {
  constexpr std::string_view kBare = "LIST";
  listing = {};
  Outcome outcome = Fetch(listCommand_, kBare, listing);
  if (listCommand_ == kBare || optionsWork_) return outcome;
  const bool refused = commandSent_ && outcome.code / 100 == 5;
  const bool any = HoldsEntries(listing.text);
  optionsWork_ = outcome.IsDone() && any;
  if (any || (!refused && !outcome.IsDone())) return outcome;
  Listing bare;
  Outcome other = Fetch(std::string(kBare), kBare, bare);
  const bool more = other.IsDone() && (refused || HoldsEntries(bare.text));
  // Some say in this way that there are no files.
  const bool none = other.IsDone() || other.code / 100 == 5 || other.code == kNoFiles;
  if (!more && !refused && none) return outcome;
  if (more) listCommand_ = kBare;
  listing = std::move(bare);
  return other;
}

// A listing has no size to compare. One of which it is not certain that it has come whole is
// fetched again: what was cut by chance is then another, and what comes twice the same is compared
// with what the server tells on the control connection. Where it tells nothing there, only whole
// lines can be whole.
Outcome MFtp::Fetch(const std::string& command, std::string_view logged, Listing& listing) {
  Outcome outcome = FetchOnce(command, logged, listing.text);
  if (!IsDoubtful(outcome, listing.text)) return outcome;
  const std::string digest = DigestOf(listing.text);
  listing.text.Clear();
  outcome = FetchOnce(command, logged, listing.text);
  if (!IsDoubtful(outcome, listing.text)) return outcome;
  const bool open = listing.text.IsOpen();
  Outcome cut = NotComplete(
      {Outcome::Kind::Busy, 0, open ? Text("its last line has no end.") : outcome.text.Reason()});
  if (DigestOf(listing.text) != digest) return cut;
  const Whole whole = CompareWithStatus(listing);
  if (whole == Whole::No || (whole == Whole::Unknown && open)) return cut;
  if (data_.WasCut()) data_.NoteCareless();
  return {};
}

bool MFtp::IsDoubtful(const Outcome& outcome, const ListingText& text) const {
  const bool unended = outcome.kind == Outcome::Kind::Busy && outcome.code == 0 && data_.WasCut();
  return unended || (outcome.IsDone() && text.IsOpen());
}

// By STAT (RFC 959, 4.1.3), which goes over the control connection: there nothing can be cut and
// pass unnoticed.
MFtp::Whole MFtp::CompareWithStatus(const Listing& listing) {
  constexpr std::size_t kMost = std::size_t{256} * 1024;
  if (listing.text.View().size() > kMost || listing.text.Dropped() > 0) return Whole::Unknown;
  const bool options = listCommand_ != "LIST";
  const Reply reply = control_.SendCommand(options ? "STAT -la" : "STAT .");
  if (!reply.IsCompletion()) return Whole::Unknown;
  const std::size_t begin = reply.text.find('\n');
  const std::size_t end = reply.text.rfind('\n', reply.text.size() - 2);
  if (begin == std::string::npos || end == std::string::npos || begin >= end) return Whole::Unknown;
  const std::string_view lines = std::string_view(reply.text).substr(begin + 1, end - begin);
  auto told = NamesIn({lines, Today()});
  const auto here = NamesIn({listing.text.View(), Today(), listing.form});
  // Not every listing has hidden files.
  const auto isHidden = [](const std::string& name) { return name.starts_with('.'); };
  if (std::ranges::none_of(here, isHidden)) std::erase_if(told, isHidden);
  if (told.empty()) return Whole::Unknown;
  if (!std::ranges::includes(here, told)) return Whole::No;
  return told == here ? Whole::Yes : Whole::Unknown;
}

Outcome MFtp::FetchOnce(const std::string& command, std::string_view logged, ListingText& text) {
  std::unique_ptr<RemoteFile> data;
  if (Outcome outcome = Open(command, logged, 0, data); !outcome.IsDone()) return outcome;
  Outcome outcome = ReadListing(*data, text);
  if (!outcome.IsDone()) return NotComplete(outcome);
  outcome = data->Finish();
  if (outcome.IsDone() && SaysCut(outcome.server)) {
    outcome.text = Text::Raw(outcome.server);
    outcome.kind = Outcome::Kind::Refused;
  }
  return outcome.IsDone() ? outcome : NotComplete(outcome);
}

// The data up to its end.
Outcome MFtp::ReadListing(RemoteFile& data, ListingText& text) {
  std::vector<char> buffer(kFirstBlock);
  std::size_t received = 0;
  for (;;) {
    std::size_t count = 0;
    if (Outcome outcome = data.Read(buffer, count); !outcome.IsDone()) return outcome;
    if (count == 0) return {};
    received += count;
    if (!text.Append({buffer.data(), count}))
      return Outcome::LocalError(Text::Raw(ErrorText(errno)));
    if (received > maxListing_) {
      return {Outcome::Kind::Refused, 0, Text("the listing is larger than 1 GiB.")};
    }
    // The byte ends a listing where nothing follows it.
    if (buffer[count - 1] == kSentinel && !data.Wait(kPatience)) {
      return {Outcome::Kind::Busy, 0, Text("the server stopped in the middle.")};
    }
    if (count == buffer.size() && buffer.size() < kMostBlock) buffer.resize(buffer.size() * 2);
  }
}

}  // namespace corvane
