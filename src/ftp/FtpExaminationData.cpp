#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <utility>

#include "ftp/DataPort.h"
#include "ftp/Errands.h"
#include "ftp/FtpCommand.h"
#include "ftp/FtpExamination.h"
#include "ftp/FtpFailure.h"
#include "ftp/FtpFile.h"
#include "ftp/ListingDos.h"
#include "ftp/ListingFacts.h"
#include "ftp/ListingParser.h"

namespace corvane {
namespace {

using Kind = DiagnosisStep::Kind;
using Learned = Habits::Learned;
using Sign = DiagnosisStep::Sign;
using Step = DiagnosisStep;

constexpr std::size_t kMostListing = std::size_t{4} * 1024 * 1024;
constexpr std::int64_t kMostFile = std::int64_t{64} * 1024;

Step Made(Sign sign, Finding finding, Text seen) {
  return {.sign = sign, .seen = std::move(seen), .finding = finding};
}

Step Good(Text seen) {
  return Made(Sign::Good, Finding::Nothing, std::move(seen));
}

// The address in a PASV reply, where it names another machine than the one that is spoken to.
std::string OtherAddress(std::string_view reply, const NLAddress& server) {
  const std::size_t open = reply.find('(');
  if (open == std::string_view::npos) return {};
  std::string address(reply.substr(open + 1));
  std::size_t end = 0;
  for (int part = 0; part < 4 && end != std::string::npos; ++part) end = address.find(',', end + 1);
  if (end == std::string::npos) return {};
  address.resize(end);
  std::ranges::replace(address, ',', '.');
  const bool same = address == server.text() || server.family() != AF_INET;
  return same || address.find_first_not_of("0123456789.") != std::string::npos ? "" : address;
}

Text Count(std::int64_t entries) {
  return entries == 1 ? Text("1 entry came.") : Text("%1 entries came.", entries);
}

std::vector<RemoteEntry> Read(std::string_view listing, std::size_t& strange, bool& dos) {
  std::vector<RemoteEntry> entries;
  ListingParser parser(listing, Today());
  for (RemoteEntry entry; parser.Next(entry);) entries.push_back(entry);
  strange = parser.Known() == 0 ? parser.Strange() : 0;
  RemoteEntry entry;
  ListingLine line{listing.substr(0, listing.find('\n')), {}, Today()};
  dos = ReadDosLine(line, entry);
  return entries;
}

// "2 h", "2 h 30 min" or "5 min".
Text Length(std::int64_t seconds) {
  const std::int64_t minutes = (std::abs(seconds) + 30) / 60;
  if (minutes < 60) return Text("%1 min", minutes);
  if (minutes % 60 == 0) return Text("%1 h", minutes / 60);
  return Text("%1 h %2 min", minutes / 60, minutes % 60);
}

}  // namespace

Outcome FtpExamination::Again() {
  if (fresh_) return {};
  control_.GiveUp(Text("The connection is closed"));
  std::vector<Kind> kinds = Steps();
  kinds.resize(8);
  kinds.erase(kinds.begin(), kinds.begin() + 2);
  line_.clear();
  for (const Kind kind : kinds) {
    if (kind == Kind::Features) continue;
    const Step step = Dispatch(kind);
    if (step.sign == Sign::Bad && kind != Kind::Directory)
      return {Outcome::Kind::Lost, 0, step.seen};
  }
  return {};
}

Outcome FtpExamination::Fetch(bool passive, const std::string& command, std::int64_t offset,
                              std::string& bytes) {
  bytes.clear();
  data_.KeepTo(passive);
  if (Outcome outcome = data_.SetUp(); !outcome.IsDone()) return outcome;
  (void)control_.SendCommand("TYPE I");
  if (offset > 0) {
    Outcome marked =
        FtpControl::CheckResult(control_.SendCommand("REST " + std::to_string(offset)), {}, 3);
    if (!marked.IsDone()) return marked;
  }
  auto sent = std::make_unique<FtpCommand>(control_, command);
  if (Outcome outcome = data_.Open(*sent); !outcome.IsDone()) return outcome;
  FtpFile file(control_, data_, std::move(sent), offset, false,
               Errands({control_, data_, features_, habits_}, {}));
  std::array<char, 16384> block{};
  for (;;) {
    std::size_t count = 0;
    if (Outcome outcome = file.Read(block, count); !outcome.IsDone()) return outcome;
    if (count == 0) return file.Finish();
    std::copy_if(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count),
                 std::back_inserter(bytes), [offset](char c) { return offset > 0 || c != '\r'; });
    if (bytes.size() > kMostListing) return {};
  }
}

Step FtpExamination::Transfer(bool passive) {
  if (control_.IsTunnelled() && !passive)
    return Made(Sign::LeftOut, Finding::Nothing, Text("Through the proxy nothing can come in."));
  if (Outcome again = Again(); !again.IsDone())
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out: %1", again.text));
  std::atomic<Learned>& way = passive ? habits_.passive : habits_.active;
  way = Learned::Unknown;
  portReply_.clear();
  // What the server waits for itself is to be heard within the step's time.
  const Waits usual = std::exchange(control_.waits, Waits::All(Share(2)));
  std::string listing;
  Outcome outcome =
      control_.Guard([&]() -> Outcome { return Fetch(passive, listCommand_, 0, listing); });
  constexpr int kUnavailable = 550;
  if (outcome.code >= 500 && outcome.code <= kUnavailable && way != Learned::No &&
      listCommand_ != "LIST") {
    outcome = control_.Guard([&]() -> Outcome { return Fetch(passive, "LIST", 0, listing); });
    optionsRefused_ = outcome.IsDone();
    if (optionsRefused_) listCommand_ = "LIST";
  }
  if (IsUnended(outcome)) outcome = {};
  (void)control_.Guard([this]() -> Outcome { return data_.Close(), Outcome(); });
  control_.waits = usual;
  if (control_.IsInterrupted() || !outcome.IsDone()) fresh_ = false;
  if (!outcome.IsDone()) return NoTransfer(passive, outcome);
  std::size_t strange = 0;
  bool dos = false;
  entries_ = Read(listing, strange, dos);
  listing_ = std::move(listing);
  listedPassive_ = passive;
  const Text count = Count(static_cast<std::int64_t>(entries_.size()));
  const std::string other =
      passive ? OtherAddress(portReply_, control_.ServerAddress()) : std::string();
  if (other.empty()) return Good(count);
  return Made(Sign::Caution, Finding::PrivateAddress,
              Text("%1 The server names %2, which is not its address here.", count, other));
}

Step FtpExamination::NoTransfer(bool passive, const Outcome& outcome) const {
  const bool works = (passive ? habits_.passive : habits_.active) == Learned::Yes;
  const bool none = (passive ? habits_.passive : habits_.active) == Learned::No;
  if (works || (!none && outcome.kind == Outcome::Kind::Refused))
    return Made(Sign::Bad, Finding::ListingRefused,
                Text("The server gives no listing: %1", Why(outcome)));
  if (passive)
    return Made(
        Sign::Bad, Finding::NoPassive,
        Text("This computer cannot open a connection to the server’s port: %1", Why(outcome)));
  return Made(Sign::Bad, Finding::NoActive, NoConnectionHere());
}

Step FtpExamination::Listing() {
  if (!listing_)
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out until a listing comes."));
  std::size_t strange = 0;
  bool dos = false;
  (void)Read(*listing_, strange, dos);
  if (strange > 0)
    return Made(Sign::Bad, Finding::StrangeListing,
                Text("The server's listing is in a form that is not understood."));
  if (optionsRefused_)
    return Made(Sign::Caution, Finding::NoOptions,
                Text("The server lists only without options: hidden files stay hidden."));
  if (dos)
    return Made(Sign::Caution, Finding::DosListing,
                Text("The server lists as DOS does, without rights and owners."));
  return Good(listing_->empty() ? Text("The directory is empty.")
                                : Text("The listing is in a form that is well known."));
}

const RemoteEntry* FtpExamination::SmallFile() const {
  const auto fits = [](const RemoteEntry& entry) {
    return entry.kind == RemoteEntry::Kind::File && entry.size.value_or(0) > 1 &&
           *entry.size <= kMostFile && FtpControl::IsLine(entry.name);
  };
  const auto found = std::ranges::find_if(entries_, fits);
  return found == entries_.end() ? nullptr : &*found;
}

Step FtpExamination::ResumeFile() {
  if (!listing_)
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out until a listing comes."));
  const RemoteEntry* const file = SmallFile();
  if (file == nullptr)
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out: no small file is there to try."));
  if (Outcome again = Again(); !again.IsDone())
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out: %1", again.text));
  std::string bytes;
  Outcome outcome = control_.Guard(
      [&]() -> Outcome { return Fetch(listedPassive_, "RETR " + file->name, 1, bytes); });
  const bool fits = static_cast<std::int64_t>(bytes.size()) == *file->size - 1;
  if (fits && IsUnended(outcome)) outcome = {};
  (void)control_.Guard([this]() -> Outcome { return data_.Close(), Outcome(); });
  if (!outcome.IsDone()) fresh_ = false;
  if (outcome.IsDone() && fits) return Good(Text("%1 came from its second byte on.", file->name));
  constexpr int kUnavailable = 550;
  if (outcome.code == kUnavailable)
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out: %1 may not be read.", file->name));
  if (outcome.IsDone())
    return Made(Sign::Caution, Finding::NoResume,
                Text("The server begins at the start of a file all the same."));
  return Made(Sign::Caution, Finding::NoResume,
              Text("The server cannot begin within a file: %1", Why(outcome)));
}

std::optional<RemoteTime> FtpExamination::ExactTime(const RemoteEntry& entry) {
  constexpr int kFileStatus = 213;
  if (const auto command = AskTimeCommand(features_, entry.name)) {
    const Reply reply = control_.SendCommand(*command);
    if (reply.code == kFileStatus) return ReadTimeVal(reply.lastText);
  }
  return std::nullopt;
}

// A file's time can lie in the past as far as it will; one of the future shows a clock that is
// ahead.
Step FtpExamination::Clock() {
  constexpr std::int64_t kTolerance = 300;
  constexpr std::int64_t kMinute = 60;
  constexpr std::int64_t kMostZone = std::int64_t{15} * 3600;
  const auto isTold = [](const RemoteEntry& entry) {
    return entry.kind == RemoteEntry::Kind::File && FtpControl::IsLine(entry.name) &&
           entry.modified && entry.modified->precision != RemoteTime::Precision::Day;
  };
  const RemoteEntry* newest = nullptr;
  for (const RemoteEntry& entry : entries_) {
    if (isTold(entry) && (newest == nullptr || entry.modified->seconds > newest->modified->seconds))
      newest = &entry;
  }
  if (newest == nullptr)
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out: no file tells its time."));
  if (Outcome again = Again(); !again.IsDone())
    return Made(Sign::LeftOut, Finding::Nothing, Text("Left out: %1", again.text));
  const auto exact = ExactTime(*newest);
  if (!exact)
    return Made(Sign::LeftOut, Finding::Nothing,
                Text("Left out: the server does not tell exact times."));
  const std::int64_t ahead = exact->seconds - std::time(nullptr);
  if (ahead > kTolerance)
    return Made(Sign::Caution, Finding::ClockAhead,
                Text("%1 was changed %2 from now: the server’s clock is ahead.", newest->name,
                     Length(ahead)));
  const std::int64_t off = newest->modified->seconds - exact->seconds / kMinute * kMinute;
  if (std::abs(off) >= kMinute && std::abs(off) <= kMostZone)
    return Made(Sign::Caution, Finding::OtherZone,
                off > 0 ? Text("Times in listings are %1 ahead of universal time.", Length(off))
                        : Text("Times in listings are %1 behind universal time.", Length(off)));
  return Good(Text("Nothing is newer than now."));
}

}  // namespace corvane
