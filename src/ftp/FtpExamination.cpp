#include "ftp/FtpExamination.h"

#include <algorithm>
#include <utility>

#include "ftp/FtpCommand.h"
#include "ftp/FtpFailure.h"
#include "ftp/SiteWay.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"
#include "net/NLLookup.h"

namespace corvane {
namespace {

using Kind = DiagnosisStep::Kind;
using Sign = DiagnosisStep::Sign;
using Behind = PortProbe::Behind;

DiagnosisStep Bad(Finding finding, Text seen) {
  return {.sign = Sign::Bad, .seen = std::move(seen), .finding = finding};
}

DiagnosisStep Good(Text seen) {
  return {.sign = Sign::Good, .seen = std::move(seen)};
}

Text Addresses(const std::vector<NLAddress>& addresses) {
  constexpr std::size_t kMost = 4;
  std::string list;
  for (std::size_t i = 0; i < std::min(addresses.size(), kMost); ++i)
    list += (i > 0 ? ", " : "") + addresses[i].text();
  return Text::Raw(addresses.size() > kMost ? list + ", …" : list);
}

}  // namespace

FtpExamination::FtpExamination(Site site, std::shared_ptr<ServerTrust> trust, Means means)
    : site_(std::move(site)),
      trust_(std::move(trust)),
      means_(std::move(means)),
      control_([this](std::string_view line) {
        line_ = line;
        if (line.starts_with("227 ")) portReply_ = line;
      }),
      data_(control_, habits_, site_.passive) {
  control_.waits = Waits::All(Share(10) * 9);
}

FtpExamination::~FtpExamination() = default;

std::vector<Kind> FtpExamination::Steps() const {
  std::vector<Kind> steps = {Kind::Address,    Kind::Route,   Kind::Port,     Kind::Greeting,
                             Kind::Encryption, Kind::Login,   Kind::Features, Kind::Directory,
                             Kind::Active,     Kind::Passive, Kind::Listing,  Kind::Resume,
                             Kind::Clock};
  if (site_.security == Security::Implicit) std::swap(steps[3], steps[4]);
  if (site_.passive) std::swap(steps[8], steps[9]);
  return steps;
}

Text FtpExamination::NameOf(Kind kind) const {
  switch (kind) {
    case Kind::Address: return Text("Find the address");
    case Kind::Route: return Text("Find a way there");
    case Kind::Port: return Text("Reach port %1", PeerOf(site_).second);
    case Kind::Greeting: return Text("Wait for the greeting");
    case Kind::Encryption: return Text("Encrypt");
    case Kind::Login: return Text("Log in");
    case Kind::Features: return Text("Ask what the server can do");
    case Kind::Directory: return Text("Enter the directory");
    case Kind::Active: return Text("Fetch a listing, active");
    case Kind::Passive: return Text("Fetch a listing, passive");
    case Kind::Listing: return Text("Understand the listing");
    case Kind::Resume: return Text("Resume a file");
    case Kind::Clock: return Text("Compare the clocks");
  }
  return {};
}

void FtpExamination::Interrupt() {
  control_.SetInterrupted(true);
  data_.Abort();
  const MutexLock hold(reach_);
  if (lookup_) lookup_->cancel();
}

void FtpExamination::Resume() {
  control_.SetInterrupted(false);
}

void FtpExamination::Close() {
  control_.Close();
  Interrupt();
}

void FtpExamination::End() {
  (void)control_.Guard([this]() -> Outcome {
    FtpCommand quit(control_, "QUIT");
    control_.SetInterrupted(true);
    quit.Hurry();
    control_.SayEnd();
    return {};
  });
}

// What a step could not do within its time leaves the connection unusable.
DiagnosisStep FtpExamination::Take(Kind kind) {
  Step step;
  Outcome outcome = control_.Guard([&]() -> Outcome { return step = Dispatch(kind), Outcome(); });
  if (!outcome.IsDone()) step = Bad(Finding::Unavailable, Why(outcome));
  if (control_.IsInterrupted()) {
    fresh_ = false;
    step = Overtime(kind);
  }
  if (control_.IsLost()) fresh_ = false;
  step.kind = kind;
  step.name = NameOf(kind);
  return step;
}

// A server that waits for a data connection in vain may say so much later.
DiagnosisStep FtpExamination::Overtime(Kind kind) const {
  const auto seconds = (means_.limit.count() + 999) / 1000;
  const Text why("Nothing came of it within %1 s.", seconds);
  switch (kind) {
    case Kind::Port: return Bad(Finding::PortSilent, why);
    case Kind::Greeting: return Bad(Finding::Mute, why);
    case Kind::Encryption: return Bad(Finding::EncryptionHangs, why);
    case Kind::Active: return Bad(Finding::NoActive, NoConnectionHere());
    case Kind::Passive: return Bad(Finding::NoPassive, why);
    default: return Bad(Finding::Overtime, why);
  }
}

DiagnosisStep FtpExamination::Dispatch(Kind kind) {
  switch (kind) {
    case Kind::Address: return Address();
    case Kind::Route: return Route();
    case Kind::Port: return Port();
    case Kind::Greeting: return Greeting();
    case Kind::Encryption: return Encryption();
    case Kind::Login: return Login();
    case Kind::Features: return Features();
    case Kind::Directory: return Directory();
    case Kind::Active: return Transfer(false);
    case Kind::Passive: return Transfer(true);
    case Kind::Listing: return Listing();
    case Kind::Resume: return ResumeFile();
    case Kind::Clock: return Clock();
  }
  return {};
}

std::string FtpExamination::Heard(std::string_view words) const {
  constexpr std::size_t kLeast = 3;  // shorter ones are in every second word
  constexpr std::size_t kMost = 300;
  std::string heard(words.substr(0, kMost));
  const std::string proxys = site_.proxy ? site_.proxy->password : std::string();
  for (const std::string& secret : {site_.password, proxys}) {
    if (secret.size() < kLeast || site_.user == "anonymous") continue;
    for (std::size_t at = heard.find(secret); at != std::string::npos; at = heard.find(secret, at))
      heard.replace(at, secret.size(), "***");
  }
  return heard;
}

Text FtpExamination::Why(const Outcome& outcome) const {
  const Text& why = outcome.text.Reason();
  return why.Identifier().empty() ? Text::Raw(Heard(why.Bytes())) : why;
}

PortProbe FtpExamination::Probe() const {
  return {addresses_, TunnelOf(site_), [this] { return !control_.IsInterrupted(); }};
}

DiagnosisStep FtpExamination::Address() {
  const Proxy* const proxy = ProxyInFront(site_);
  if (proxy == nullptr && TunnelOf(site_))
    return Bad(Finding::ProxyFails, Text("The preferences name no address for the proxy."));
  const std::string& host = proxy != nullptr ? proxy->host : site_.host;
  const std::uint16_t port = proxy != nullptr ? proxy->port : site_.port;
  try {
    if (means_.resolve) {
      addresses_ = means_.resolve(host, port);
    } else {
      auto lookup = std::make_shared<NLLookup>(host, port);
      {
        const MutexLock hold(reach_);
        lookup_ = lookup;
        if (control_.IsInterrupted()) lookup->cancel();
      }
      addresses_ = lookup->get();
    }
  } catch (const NLException&) {
    return proxy != nullptr
               ? Bad(Finding::ProxyFails, Text("No address is known for the proxy %1.", host))
               : Bad(Finding::UnknownName, Text("No address is known for %1.", host));
  }
  const bool same = addresses_.front().text() == host;
  if (same) return Good(Text("%1 is an address already.", host));
  return Good(proxy != nullptr ? Text("The proxy %1 is %2.", host, Addresses(addresses_))
                               : Text("%1 is %2.", host, Addresses(addresses_)));
}

// A datagram socket that is connected sends nothing: the system chooses the way.
DiagnosisStep FtpExamination::Route() {
  std::string from;
  std::vector<NLAddress> dead;
  for (const NLAddress& address : addresses_) {
    try {
      NLEndpoint socket(NLEndpoint::datagram);
      socket.connect(address);
      if (from.empty()) from = socket.localAddress().text();
    } catch (const NLException&) {
      dead.push_back(address);
    }
  }
  if (from.empty())
    return Bad(Finding::NoWay, Text("This computer has no way to %1.", Addresses(addresses_)));
  if (dead.empty()) return Good(Text("This computer goes there as %1.", Text::Raw(from)));
  return {.sign = Sign::Caution,
          .seen = Text("This computer goes there as %1, and has no way to %2.", Text::Raw(from),
                       Addresses(dead)),
          .finding = Finding::DeadAddress};
}

DiagnosisStep FtpExamination::Port() {
  line_.clear();
  const Outcome outcome = control_.Guard([this]() -> Outcome {
    control_.Connect(addresses_, TunnelOf(site_), site_.port);
    data_.Begin();
    return {};
  });
  if (!outcome.IsDone()) return PortFailed(outcome);
  fresh_ = true;
  const NLAddress& here = control_.ServerAddress();
  if (control_.IsTunnelled()) return Good(Text("The proxy leads there."));
  for (const NLAddress& other : addresses_) {
    if (other.family() == here.family()) continue;
    const PortProbe probe({other}, {}, [this] { return !control_.IsInterrupted(); });
    if (probe.IsOpen(other.port(), Share(4))) continue;
    return {.sign = Sign::Caution,
            .seen = Text("%1 takes connections, %2 does not.", here.text(), other.text()),
            .finding = Finding::DeadAddress};
  }
  return Good(Text("%1 takes connections.", here.text()));
}

DiagnosisStep FtpExamination::PortFailed(const Outcome& outcome) const {
  const bool closed = outcome.trouble == Outcome::Trouble::RefusedPort;
  const bool silent = outcome.trouble == Outcome::Trouble::NoAnswer;
  const bool proxy = ProxyInFront(site_) != nullptr;
  if (proxy && !(closed && TunnelOf(site_))) return Bad(Finding::ProxyFails, Why(outcome));
  if (!proxy && !closed && !silent) return Bad(Finding::PortSilent, Why(outcome));
  const Text seen =
      closed ? Text("Nothing takes connections there.") : Text("Nothing comes from there.");
  for (const std::uint16_t other : {means_.usualPort, means_.encryptedPort}) {
    if (other == site_.port) continue;
    const bool encrypted = other == means_.encryptedPort;
    const bool open = encrypted ? Probe().IsOpen(other, Share(10))
                                : Probe().Listen(other, Share(10)) == Behind::Ftp;
    if (!open) continue;
    Step step = Bad(Finding::OtherPort, Text("%1 But port %2 is open.", seen, other));
    step.port = other;
    return step;
  }
  return Bad(closed ? Finding::PortClosed : Finding::PortSilent, seen);
}

DiagnosisStep FtpExamination::Greeting() {
  if (!control_.ComesWithin(means_.limit / 2)) return NoGreeting(Text("Nothing is said there."));
  Reply reply;
  const Outcome heard = control_.Guard([&]() -> Outcome {
    reply = control_.ReadGreeting();
    return {};
  });
  if (!heard.IsDone()) return NoGreeting(Why(heard));
  const Text words = Text("The server says: %1", Heard(WithoutLineEnd(reply.text)));
  if (reply.IsCompletion()) return Good(words);
  const bool tooMany = FtpControl::CheckResult(reply).trouble == Outcome::Trouble::TooMany;
  return Bad(tooMany ? Finding::TooMany : Finding::Unavailable, words);
}

DiagnosisStep FtpExamination::NoGreeting(const Text& why) const {
  const Behind behind = PortProbe::Service(line_);
  if (behind != Behind::Mute) return Stranger(behind, why);
  if (site_.security == Security::Implicit) return Bad(Finding::Mute, why);
  return Stranger(Probe().Look(site_.port, site_.host, Share(10)), why);
}

DiagnosisStep FtpExamination::Stranger(Behind behind, const Text& otherwise) const {
  switch (behind) {
    case Behind::Ssh:
      return Bad(Finding::Ssh, Text("An SSH server is there: %1",
                                    Heard(WithoutLineEnd(line_.empty() ? "SSH" : line_))));
    case Behind::Web: return Bad(Finding::Web, Text("A web server is there."));
    case Behind::Tls:
      return Bad(Finding::EncryptsAtOnce,
                 Text("The server says nothing before the connection is encrypted."));
    case Behind::Strange:
      return Bad(Finding::Strange,
                 Text("What is there is no FTP server: %1", Heard(WithoutLineEnd(line_))));
    case Behind::Ftp:
    case Behind::Closed:
    case Behind::Silent:
    case Behind::Mute: break;
  }
  return Bad(behind == Behind::Ftp ? Finding::Unavailable : Finding::Mute, otherwise);
}

}  // namespace corvane
