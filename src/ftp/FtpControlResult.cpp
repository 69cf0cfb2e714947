#include <algorithm>
#include <cctype>
#include <string>
#include <utility>

#include "ftp/FtpControl.h"

namespace corvane {
namespace {

constexpr int kGone = 421;
constexpr int kNoDataConnection = 425;
constexpr int kNotLoggedIn = 530;

// Words of a server that turns a connection away, as far as they do not speak of wrong passwords or
// of silence. With other codes than those for it they name what there is too much of.
bool SaysTooMany(const Reply& reply) {
  if (reply.code < 400) return false;
  std::string words = reply.text;
  std::ranges::transform(words, words.begin(), [](unsigned char c) { return std::tolower(c); });
  const auto say = [&words](auto... phrases) {
    return ((words.find(phrases) != std::string::npos) || ...);
  };
  if (say("attempt", "fail", "idle", "time limit", "timeout", "timed", "limited")) return false;
  const bool usual =
      reply.code == kGone || reply.code == kNoDataConnection || reply.code == kNotLoggedIn;
  if (usual) return say("too many", "maximum", "limit", "already connected");
  for (const std::string who : {"connections", "users", "clients", "sessions", "logins"})
    if (say("too many " + who, "maximum " + who, "maximum number of " + who)) return true;
  return false;
}

Outcome::Kind KindOf(int code) {
  switch (code) {
    case kGone: return Outcome::Kind::Lost;
    case kNoDataConnection:
    case 426:
    case 450: return Outcome::Kind::Busy;
    default: return Outcome::Kind::Refused;
  }
}

// What is said of a refusal where the caller has no words of its own.
Text WordsFor(int code) {
  switch (code) {
    case 426:
    case 450:
    case 451:
    case 452:
    case 500:
    case 501: return Text("Error in parameters");
    case 502: return Text("Command not implemented!");
    case 503: return Text("Bad sequence of commands!");
    case 504:
    case kNotLoggedIn:
    case 532:
    case 550: return {};
    default: return Text("The server refused the request.");
  }
}

}  // namespace

Outcome FtpControl::CheckResult(const Reply& reply, const Text& failed, int wanted) {
  if (reply.code / 100 == wanted) return {Outcome::Kind::Done, reply.code};
  const Text words = Text::Raw(reply.Words());
  std::string server(WithoutLineEnd(reply.text));
  if (reply.IsNone()) {
    return {Outcome::Kind::Refused, 0,
            Text("The server is out of step; its reply does not belong to what it was asked: %1",
                 server),
            server};
  }
  if (SaysTooMany(reply)) {
    return {Outcome::Kind::Busy, reply.code,
            Text("The server takes no more connections at the moment: %1",
                 reply.Words().empty() ? Text::Raw(server) : words),
            server, Outcome::Trouble::TooMany};
  }
  if (reply.code == kGone) {
    return {Outcome::Kind::Lost, kGone,
            Text::WithReason(Text("Service not available, closing control connection!"), words),
            std::move(server)};
  }
  return {KindOf(reply.code), reply.code,
          Text::WithReason(failed.IsEmpty() ? WordsFor(reply.code) : failed, words),
          std::move(server)};
}

}  // namespace corvane
