#include <algorithm>
#include <cctype>
#include <utility>

#include "ftp/FtpFailure.h"
#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "net/NLLookup.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

bool SaysTooMany(std::string words) {
  std::ranges::transform(words, words.begin(), [](unsigned char c) { return std::tolower(c); });
  return words.find("too many") != std::string::npos || words.find("maximum") != std::string::npos;
}

}  // namespace

bool MFtp::Tell(const Text& status) {
  return owner_->SetStatus(status);
}

Outcome MFtp::Connect() {
  Outcome outcome = control_.Guard([this] { return Login(); });
  if (!outcome.IsDone()) {
    control_.GiveUp(outcome.text);
    return control_.IsClosed() ? Outcome::Cancelled() : outcome;
  }
  return control_.Guard([this]() -> Outcome {
    GetServerType();
    start_ = AskPath().value_or("");
    cwd_ = start_;
    told_ = start_;
    // A server that refuses is asked again before each transfer.
    (void)SetBinary();
    return {};
  });
}

Outcome MFtp::Login() {
  binary_ = false;
  markerSet_ = false;
  cwd_.reset();
  if (!Tell(Text("Resolving address."))) return Outcome::Cancelled();
  NLAddress server;
  if (Outcome outcome = Resolve(server); !outcome.IsDone()) return outcome;
  if (!Tell(Text("Connecting to host."))) return Outcome::Cancelled();
  try {
    control_.Connect(server);
    if (!Tell(Text("Connected."))) return Outcome::Cancelled();
    return Identify();
  } catch (const NLException& error) {
    return {Outcome::Kind::Lost, 0,
            Text::WithReason(Text("Connection to:  %1 FAILED!", site_.host), Reason(error))};
  } catch (const FtpFailure& failure) {
    if (failure.outcome.kind != Outcome::Kind::Lost) throw;
    return {Outcome::Kind::Lost, 0,
            Text::WithReason(Text("Connection to:  %1 FAILED!", site_.host), failure.outcome.text)};
  }
}

// Finds the address of the server, or of the proxy in front of it.
Outcome MFtp::Resolve(NLAddress& server) {
  const bool viaProxy = site_.proxy && !site_.proxy->host.empty();
  try {
    auto lookup = viaProxy ? std::make_shared<NLLookup>(site_.proxy->host, site_.proxy->port)
                           : std::make_shared<NLLookup>(site_.host, site_.port);
    {
      const MutexLock hold(reach_);
      lookup_ = lookup;
      if (control_.IsInterrupted()) lookup->cancel();
    }
    server = lookup->get();
    return {};
  } catch (const NLException&) {
    if (control_.IsInterrupted()) return Outcome::Cancelled();
    // Names the server even where it was the proxy that could not be found.
    return Outcome::LocalError(Text("Could not resolve the address for:\n\n %1", site_.host));
  }
}

// From the greeting to the password's reply.
Outcome MFtp::Identify() {
  constexpr int kNotLoggedIn = 530;
  constexpr int kUnavailable = 550;
  Reply reply = control_.ReadResponse();
  // "120 Service ready in nnn minutes": the greeting proper is still to come.
  while (reply.IsPreliminary()) reply = control_.ReadResponse();
  if (reply.code >= 400) {
    return {
        SaysTooMany(reply.text) || reply.code == 421 ? Outcome::Kind::Busy : Outcome::Kind::Lost,
        reply.code,
        Text::WithReason(Text("Connection to:  %1 FAILED!", site_.host),
                         FtpControl::CheckResult(reply).text)};
  }
  if (!Tell(Text("Sending Username."))) return Outcome::Cancelled();
  reply = control_.SendCommand("USER " + site_.user + (site_.proxy ? "@" + site_.host : ""));
  const Text failed("Login to: %1 failed.", site_.host);
  if (reply.code == kNotLoggedIn)
    return RefusedLogin(reply, Text("Login to: %1 failed.\n\nUsername is invalid", site_.host));
  if (reply.code >= 400) return RefusedLogin(reply, failed);

  if (!Tell(Text("Sending Password."))) return Outcome::Cancelled();
  reply = control_.SendPassword("PASS " + site_.password);
  if (reply.code == kNotLoggedIn)
    return RefusedLogin(reply,
                        Text("Login to: %1 failed.\nInvalid Username or Password.", site_.host));
  if (reply.code == kUnavailable)
    return RefusedLogin(reply, Text("Login to: %1 as anonymous failed.", site_.host));
  if (reply.code >= 400) return RefusedLogin(reply, failed);
  owner_->PlaySound(Sound::LoginSucceeded);
  return {};
}

Outcome MFtp::RefusedLogin(const Reply& reply, const Text& text) {
  owner_->PlaySound(Sound::LoginFailed);
  Outcome outcome = FtpControl::CheckResult(reply, text);
  const bool later = reply.code == 421 || SaysTooMany(reply.text);
  outcome.kind = later ? Outcome::Kind::Busy : Outcome::Kind::Refused;
  return outcome;
}

void MFtp::GetServerType() {
  constexpr int kSystemType = 215;
  const Reply reply = control_.SendCommand("SYST");
  const std::string word = reply.lastText.substr(0, reply.lastText.find_first_of(" \n"));
  listCommand_ = "LIST -la";
  if (reply.lastText == "UNIX AppleShare IP FTP Server\n") listCommand_ = "LIST";
  if (reply.code != kSystemType || word != "Windows_NT") return;
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
  constexpr std::size_t kMaxPath = 4096;
  const Reply reply = control_.SendCommand("PWD");
  if (!reply.IsCompletion()) return std::nullopt;
  std::string text = reply.lastText;
  const std::size_t open = text.find('"');
  if (open == std::string::npos) {
    // A server without quotes: what stands behind the code is all there is.
    while (text.ends_with('\n') || text.ends_with(' ')) text.pop_back();
  } else {
    const std::size_t close = text.rfind('"');
    text = text.substr(open + 1, close > open ? close - open - 1 : text.find('\n') - open - 1);
    // A quote inside the path is written twice.
    for (std::size_t at = text.find("\"\""); at != std::string::npos;
         at = text.find("\"\"", at + 1))
      text.erase(at, 1);
  }
  // No system has longer ones; the way back up from such a path would be endless.
  if (text.size() > kMaxPath) return std::nullopt;
  return WithoutTrailingSlash(std::move(text));
}

}  // namespace corvane
