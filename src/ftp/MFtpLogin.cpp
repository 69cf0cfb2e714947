#include <cctype>
#include <utility>

#include "ftp/AskTogether.h"
#include "ftp/FtpFailure.h"
#include "ftp/MFtp.h"
#include "ftp/Reason.h"
#include "ftp/SiteWay.h"
#include "net/NLException.h"
#include "net/NLLookup.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

using Kind = ConnectStep::Kind;
using State = ConnectStep::State;

constexpr int kGone = 421;
constexpr int kSystemType = 215;
constexpr int kPath = 257;
constexpr int kNeedsPassword = 331;
constexpr int kNeedsAccount = 332;

constexpr std::string_view kAskType = "SYST";
constexpr std::string_view kAskPath = "PWD";

// A path that its closing quote ends, a quote inside it being written twice (RFC 959, appendix II).
// A server that does not write it twice leaves open where the path ends.
std::optional<std::string> Quoted(std::string_view text) {
  std::string path;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool quote = text[i] == '"';
    const char next = i + 1 < text.size() ? text[i + 1] : ' ';
    if (quote && next != '"') {
      const bool goesOn = std::isalnum(static_cast<unsigned char>(next)) != 0 || next == '/';
      return goesOn ? std::nullopt : std::optional(path);
    }
    if (quote) ++i;
    path += text[i];
  }
  return std::nullopt;
}

}  // namespace

bool MFtp::Tell(const Text& status) {
  return owner_->SetStatus(status);
}

void MFtp::Step(ConnectStep::Kind kind, ConnectStep::State state, const Text& text) {
  owner_->ShowStep({kind, state, text});
}

Outcome MFtp::Connect() {
  asked_ = false;
  Outcome outcome = control_.Guard([this] { return Login(); });
  // A server may not have had the patience for a question; the answer is known now.
  if (outcome.kind == Outcome::Kind::Lost && std::exchange(asked_, false))
    outcome = control_.Guard([this] { return Login(); });
  if (!outcome.IsDone()) {
    control_.GiveUp(outcome.text);
    return control_.IsClosed() ? Outcome::Cancelled() : outcome;
  }
  const bool unknown = habits_->takesAhead == Habits::Learned::Unknown;
  outcome = Settle();
  // One that closes for commands that come ahead is not told so again.
  const bool closed = outcome.kind == Outcome::Kind::Lost && unknown && sharesHabits_ &&
                      habits_->takesAhead == Habits::Learned::No;
  return closed ? Connect() : outcome;
}

Outcome MFtp::Settle() {
  return control_.Guard([this]() -> Outcome {
    AskFeatures(true);
    std::vector<std::string> questions = FeatureOptions();
    auto type = habits_->Told(AskedAs("SYST"));
    if (!type) questions.emplace_back(kAskType);
    questions.emplace_back(kAskPath);
    // A server that refuses is asked again before each transfer.
    questions.emplace_back("TYPE I");
    const std::vector<Reply> replies = AskTogether(control_, *habits_, questions, sharesHabits_);
    for (std::size_t i = 0; i < replies.size(); ++i) {
      if (questions[i] == kAskType) {
        type = replies[i].code == kSystemType ? replies[i].lastText : "";
        habits_->NoteTold(AskedAs("SYST"), *type);
      }
      if (questions[i] == kAskPath) start_ = PathIn(replies[i]).value_or("");
    }
    TakeServerType(*type);
    cwd_ = start_;
    told_ = start_;
    binary_ = replies.back().IsCompletion();
    return {};
  });
}

std::string MFtp::AskedAs(const char* command) const {
  return control_.Encryption() != nullptr ? std::string("TLS ") + command : command;
}

Outcome MFtp::Login() {
  binary_ = false;
  markerSet_ = false;
  knowsFeatures_ = false;
  hashKind_ = DigestKind::None;
  cwd_.reset();
  if (!Tell(Text("Resolving address."))) return Outcome::Cancelled();
  std::vector<NLAddress> addresses;
  if (Outcome outcome = Resolve(addresses); !outcome.IsDone()) return outcome;
  if (!Tell(Text("Connecting to host."))) return Outcome::Cancelled();
  try {
    Outcome outcome = Reach(addresses);
    if (outcome.IsDone()) outcome = Protect();
    if (!outcome.IsDone()) return outcome;
    // A proxy that one logs in to would tell of itself.
    if (!site_.proxy || site_.proxy->kind != Proxy::Kind::Ftp) {
      AskFeatures(false);
      NameHost();
    }
    outcome = Identify();
    return outcome.IsDone() ? ProtectData() : outcome;
  } catch (const NLException& error) {
    return {Outcome::Kind::Lost, 0,
            Text::WithReason(Text("Connection to:  %1 FAILED!", site_.host), Reason(error))};
  } catch (const FtpFailure& failure) {
    Outcome outcome = failure.outcome;
    if (outcome.kind != Outcome::Kind::Lost) throw;
    outcome.text = Text::WithReason(Text("Connection to:  %1 FAILED!", site_.host), outcome.text);
    return outcome;
  }
}

const Proxy* MFtp::Via() const {
  return ProxyInFront(site_);
}

std::optional<Tunnel> MFtp::Through() const {
  return TunnelOf(site_);
}

// Finds the addresses of the server, or of the proxy in front of it.
Outcome MFtp::Resolve(std::vector<NLAddress>& addresses) {
  const Proxy* proxy = Via();
  // Without its address such a proxy would be bypassed.
  if (proxy == nullptr && Through())
    return Outcome::LocalError(Text("The preferences name no address for the proxy."));
  const std::string& host = proxy != nullptr ? proxy->host : site_.host;
  const std::uint16_t port = proxy != nullptr ? proxy->port : site_.port;
  Step(Kind::Address, State::Running, Text("Looking up %1 …", host));
  Step(Kind::Port, State::Waiting, Text("Connecting to port %1", Peer().second));
  if (site_.security != Security::Plain)
    Step(Kind::Encryption, State::Waiting, Text("Encrypting the connection"));
  Step(Kind::Login, State::Waiting, Text("Logging in as %1", site_.user));
  try {
    auto lookup = std::make_shared<NLLookup>(host, port);
    {
      const MutexLock hold(reach_);
      lookup_ = lookup;
      if (control_.IsInterrupted()) lookup->cancel();
    }
    addresses = lookup->get();
    TellAddress(addresses.front());
    return {};
  } catch (const NLException&) {
    if (control_.IsInterrupted()) return Outcome::Cancelled();
    if (Through())
      return Outcome::LocalError(Text("Could not resolve the address for the proxy:\n\n %1", host));
    // Names the server even where it was the proxy that could not be found.
    return {Outcome::Kind::LocalError,
            0,
            Text("Could not resolve the address for:\n\n %1", site_.host),
            {},
            Outcome::Trouble::UnknownName};
  }
}

void MFtp::TellAddress(const NLAddress& address) {
  Step(Kind::Address, State::Done,
       Via() != nullptr ? Text("The address of the proxy is %1.", address.text())
                        : Text("The address is %1.", address.text()));
}

// From the connection to the greeting.
Outcome MFtp::Reach(const std::vector<NLAddress>& addresses) {
  const std::uint16_t port = Peer().second;
  Step(Kind::Port, State::Running, Text("Connecting to port %1 …", port));
  control_.Connect(addresses, Through(), site_.port);
  data_.Begin();
  if (!control_.ServerAddress().isSameHost(addresses.front()))
    TellAddress(control_.ServerAddress());
  if (site_.security == Security::Implicit) {
    if (Outcome outcome = Encrypt(); !outcome.IsDone()) return outcome;
  }
  if (!Tell(Text("Waiting for the server's greeting."))) return Outcome::Cancelled();
  const Reply reply = control_.ReadGreeting();
  Step(Kind::Port, State::Done, Text("Port %1 answers.", port));
  if (reply.IsCompletion()) return {};
  Outcome outcome = FtpControl::CheckResult(reply);
  if (outcome.trouble == Outcome::Trouble::TooMany) return outcome;
  const bool later = reply.code == kGone;
  outcome.kind = later ? Outcome::Kind::Busy : Outcome::Kind::Lost;
  outcome.text = Text::WithReason(Text("Connection to:  %1 FAILED!", site_.host), outcome.text);
  return outcome;
}

// From the user's name to the password's reply.
Outcome MFtp::Identify() {
  constexpr int kLoggedIn = 230;
  constexpr int kKnown = 232;  // by its certificate (RFC 2228)
  constexpr int kNotLoggedIn = 530;
  constexpr int kUnavailable = 550;
  Step(Kind::Login, State::Running, Text("Logging in as %1 …", site_.user));
  if (!Tell(Text("Sending Username."))) return Outcome::Cancelled();
  Reply reply = control_.SendCommand("USER " + LoginName(site_));
  const Text failed("Login to: %1 failed.", site_.host);
  if (reply.code == kNotLoggedIn)
    return RefusedLogin(reply, Text("Login to: %1 failed.\n\nUsername is invalid", site_.host));
  if (reply.code == kNeedsAccount) return GiveAccount(reply, failed);
  if (reply.code == kLoggedIn || reply.code == kKnown) return LoggedIn();
  if (reply.code != kNeedsPassword && !reply.IsCompletion()) return RefusedLogin(reply, failed);

  if (!Tell(Text("Sending Password."))) return Outcome::Cancelled();
  reply = control_.SendPassword("PASS " + site_.password);
  if (reply.code == kNotLoggedIn)
    return RefusedLogin(reply,
                        Text("Login to: %1 failed.\nInvalid Username or Password.", site_.host));
  if (reply.code == kUnavailable)
    return RefusedLogin(reply, Text("Login to: %1 as anonymous failed.", site_.host));
  if (reply.code == kNeedsAccount) return GiveAccount(reply, failed);
  return reply.IsCompletion() ? LoggedIn() : RefusedLogin(reply, failed);
}

// RFC 959, 4.1.1: some servers want to know who is to be charged.
Outcome MFtp::GiveAccount(const Reply& asked, const Text& failed) {
  std::string account = habits_->Account();
  if (account.empty() && Ask(UserQuestion::Kind::Account, {}, &account) == UserQuestion::Answer::No)
    return RefusedLogin(asked, failed);
  if (account.empty()) return RefusedLogin(asked, failed);
  habits_->SetAccount(account);
  const Reply reply = control_.SendPassword("ACCT " + account);
  if (!reply.IsCompletion()) habits_->SetAccount("");
  return reply.IsCompletion() ? LoggedIn() : RefusedLogin(reply, failed);
}

Outcome MFtp::LoggedIn() {
  owner_->PlaySound(Sound::LoginSucceeded);
  Step(Kind::Login, State::Done, Text("Logged in as %1.", site_.user));
  return {};
}

Outcome MFtp::RefusedLogin(const Reply& reply, const Text& text) {
  owner_->PlaySound(Sound::LoginFailed);
  const Text account("The server asks for an account in addition to the password.");
  Outcome outcome = FtpControl::CheckResult(reply, reply.code == kNeedsAccount ? account : text);
  const bool later = reply.code == kGone || outcome.trouble == Outcome::Trouble::TooMany;
  outcome.kind = later ? Outcome::Kind::Busy : Outcome::Kind::Refused;
  // User and password have no part in what is no refusal.
  if (!later && reply.code >= 400) outcome.trouble = Outcome::Trouble::RefusedLogin;
  return outcome;
}

void MFtp::TakeServerType(const std::string& type) {
  listCommand_ = "LIST -la";
  if (type == "UNIX AppleShare IP FTP Server\n") listCommand_ = "LIST";
  if (type.substr(0, type.find_first_of(" \n")) != "Windows_NT") return;
  listCommand_ = "LIST";
  AskForUnixListings();
}

// The command toggles: one that says "off" has switched from the DOS to the UNIX style.
void MFtp::AskForUnixListings() {
  constexpr std::string_view kToggle = "SITE DIRSTYLE";
  const Reply reply = control_.SendCommand(kToggle);
  if (reply.text.find("off") == std::string::npos) (void)control_.SendCommand(kToggle);
}

// The path of a PWD reply (RFC 959, appendix II); nothing when the server does not tell.
std::optional<std::string> MFtp::AskPath() {
  return PathIn(control_.SendCommand("PWD"));
}

// A server without quotes is believed where what stands behind the code can be nothing but a path.
std::optional<std::string> MFtp::PathIn(const Reply& reply) {
  constexpr std::size_t kMaxPath = 4096;
  if (reply.code != kPath) return std::nullopt;
  const std::string_view words = reply.Words();
  const std::size_t open = words.find('"');
  std::optional<std::string> path;
  if (open != std::string_view::npos) {
    path = Quoted(words.substr(open + 1));
  } else if (words.starts_with('/') && words.find(' ') == std::string_view::npos) {
    path = words;
  }
  // No system has longer ones; the way back up from such a path would be endless.
  if (!path || path->empty() || path->size() > kMaxPath) return std::nullopt;
  return WithoutTrailingSlash(*std::move(path));
}

}  // namespace corvane
