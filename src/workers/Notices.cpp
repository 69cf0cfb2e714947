#include "workers/Notices.h"

#include <utility>

#include "remote/RemoteSession.h"

namespace corvane {
namespace {

using std::chrono::minutes;

/// From here on minutes are exact enough.
constexpr minutes kInMinutes(2);

}  // namespace

void TellOutcome(BrowserUi& window, const RemoteSession& session, const Outcome& outcome) {
  switch (outcome.kind) {
    case Outcome::Kind::Cancelled: break;
    case Outcome::Kind::Lost: TellLoss(window, session.Host(), session.HowLost()); break;
    default:
      if (!outcome.text.IsEmpty()) Warn(window, outcome.text);
  }
}

void TellLoss(BrowserUi& window, const std::string& host, const Loss& loss, const Text& login) {
  window.SetStatus(Text("Connection lost."));
  const Text reason = ReasonOf(loss);
  Message lost("LOST"_what);
  lost.AddText("warning", Text::WithReason(Text("The connection to %1 was lost.", host),
                                           Text::Lines({reason, login})));
  lost.AddText("reason", reason);
  if (!login.IsEmpty()) lost.AddText("login", login);
  window.PostMessage(std::move(lost));
}

void Warn(BrowserUi& window, const Text& text) {
  Message warning("GERR"_what);
  warning.AddText("warning", text);
  window.PostMessage(std::move(warning));
}

void WarnOfPath(BrowserUi& window, const std::string& path, const Outcome& outcome) {
  Message warning("GERR"_what);
  warning.AddText("warning", Text::WithReason(Text("The directory %1 cannot be entered.", path),
                                              outcome.text.Reason()));
  warning.AddString("path", path);
  window.PostMessage(std::move(warning));
}

Text AdviceFor(const Outcome& outcome) {
  using Trouble = Outcome::Trouble;
  if (outcome.kind == Outcome::Kind::Busy) {
    return Text("The server has too much to do at the moment; later it may let you in.");
  }
  switch (outcome.trouble) {
    case Trouble::UnknownName:
      return Text("Mostly the name is mistyped, or this computer is not connected to a network.");
    case Trouble::NoAnswer:
      return Text("Mostly the server is switched off, or a firewall is in the way.");
    case Trouble::RefusedPort:
      return Text("Mostly the port is wrong, or no FTP server runs on that computer.");
    case Trouble::RefusedLogin:
      return Text("Mostly the username or the password is wrong; capitals count.");
    case Trouble::NoEncryption:
      return Text("Ask the server's administrator for its encryption, or choose another one here.");
    case Trouble::Certificate:
      return Text("Ask the server's administrator for the certificate's fingerprint and compare.");
    case Trouble::TooMany:
    case Trouble::Changed:
    case Trouble::Other: return {};
  }
  return {};
}

Text ReasonOf(const Loss& loss) {
  if (loss.maybeChanged) {
    return Text("No answer came, so the server may have carried out the last command or not.");
  }
  if (!loss.idle) return loss.why;
  if (*loss.idle < kInMinutes) {
    return Text("The server closed it after %1 seconds without a command.", loss.idle->count());
  }
  return Text("The server closed it after %1 minutes without a command.",
              std::chrono::duration_cast<minutes>(*loss.idle).count());
}

Text LoggedInAnew(const Loss& loss) {
  if (!loss.idle) return Text("The connection was lost. Logged in anew.");
  if (*loss.idle < kInMinutes) {
    return Text(
        "The server closed the connection after %1 seconds without a command. Logged in anew.",
        loss.idle->count());
  }
  return Text(
      "The server closed the connection after %1 minutes without a command. Logged in anew.",
      std::chrono::duration_cast<minutes>(*loss.idle).count());
}

}  // namespace corvane
