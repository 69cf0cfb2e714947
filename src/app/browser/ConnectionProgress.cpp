#include "app/browser/ConnectionProgress.h"

#include <QPointer>
#include <utility>

#include "app/browser/BrowserHost.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserView.h"
#include "app/browser/ConnectingPage.h"
#include "app/browser/MWindow.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "remote/Outcome.h"

namespace corvane {

namespace {

using Trouble = Outcome::Trouble;
using Mend = FailurePage::Mend;

QString Heading(Trouble trouble) {
  switch (trouble) {
    case Trouble::UnknownName: return MWindow::tr("The server was not found.");
    case Trouble::NoAnswer: return MWindow::tr("The server does not answer.");
    case Trouble::RefusedPort: return MWindow::tr("The server does not accept connections.");
    case Trouble::RefusedLogin: return MWindow::tr("The server refused the login.");
    case Trouble::NoEncryption: return MWindow::tr("The connection could not be encrypted.");
    case Trouble::Certificate: return MWindow::tr("The server’s certificate is not trusted.");
    case Trouble::TooMany:
      return MWindow::tr("The server takes no more connections at the moment.");
    case Trouble::Changed:
    case Trouble::Other: break;
  }
  return MWindow::tr("No connection came about.");
}

Mend ToMend(Trouble trouble) {
  switch (trouble) {
    case Trouble::UnknownName: return Mend::Host;
    case Trouble::NoAnswer:
    case Trouble::RefusedPort: return Mend::Port;
    case Trouble::RefusedLogin: return Mend::Login;
    case Trouble::NoEncryption: return Mend::Encryption;
    case Trouble::Certificate:
    case Trouble::TooMany:
    case Trouble::Changed:
    case Trouble::Other: break;
  }
  return Mend::Nothing;
}

FailurePage::Failure FailureIn(const Message& message) {
  const auto trouble = static_cast<Trouble>(message.FindInt32("kind").value_or(0));
  const auto advice = message.FindText("advice");
  const std::string server = message.FindString("server").value_or("");
  QStringList sentences;
  // Why there is no encryption counts as much as what one can do.
  if (!advice || trouble == Trouble::NoEncryption) {
    sentences += Shown(message.FindText("error").value_or(Text()));
  }
  if (advice) sentences += Shown(*advice);
  if (!server.empty()) sentences += MWindow::tr("The server says:");
  return {Heading(trouble), sentences.join(' '), ToLines(server), ToMend(trouble)};
}

// Whether nothing has to be looked for before the connection can begin.
bool HasItsPasswords(const Site& site) {
  const bool own = !site.password.empty() || (!site.keptPassword && !site.asksPassword);
  const bool proxys = !site.proxy || !site.proxy->kept || !site.proxy->password.empty();
  return own && proxys;
}

}  // namespace

ConnectionProgress::ConnectionProgress(BrowserHost& host, MWindow& window)
    : QObject(&window), host_(host), window_(window) {}

void ConnectionProgress::Become(State state) {
  state_ = state;
  Q_EMIT Changed();
}

// A password that is there already was found before or, where it is another one, typed instead.
void ConnectionProgress::Begin(const Site& site) {
  window_.View().ShowConnecting(ToText(site.host));
  Become(State::Connecting);
  const bool typed = site.password != window_.Session().To().password;
  const bool keeps = !site.password.empty() && site.keptPassword && (keep_ || typed);
  if (HasItsPasswords(site)) return Found(site, keeps);
  window_.ShowStatus(Text("Looking for the password..."));
  host_.FindPassword(&window_, site,
                     [self = QPointer(this), keeps](std::optional<Site> found, bool keep) {
                       if (!self.isNull()) self->Found(std::move(found), keep || keeps);
                     });
}

void ConnectionProgress::Found(std::optional<Site> site, bool keep) {
  keep_ = keep;
  if (site.has_value()) {
    window_.Session().Begin(host_.Workers(), std::move(*site));
    return Q_EMIT Changed();
  }
  Message missing("FERR"_what);
  missing.AddText("error", Text("No password was given."));
  Failed(missing);
}

void ConnectionProgress::Show(const ConnectStep& step) {
  if (state_ == State::Connecting) window_.View().Connecting().Show(step);
}

void ConnectionProgress::Stands() {
  if (state_ == State::Connected) return;
  window_.View().HideLoss();
  window_.View().ShowListing();
  Become(State::Connected);
  host_.ConnectionStands(window_.Session().To(), std::exchange(keep_, false),
                         [window = QPointer(&window_)](const Text& word) {
                           if (window.isNull()) return;
                           window->View().ShowNotice(Shown(word));
                           window->AppendLog(word.English() + "\n");
                         });
}

void ConnectionProgress::Failed(const Message& message) {
  if (window_.Session().WasConnected()) return Lost(message);
  window_.View().ShowFailure(FailureIn(message), window_.Session().To());
  window_.ShowStatus(Text("Not connected."));
  Become(State::NotConnected);
}

void ConnectionProgress::Lost(const Message& message) {
  const auto reason = message.FindText("reason");
  const auto said = message.FindText("warning");
  const auto error = message.FindText("error");
  window_.View().ShowLoss(
      MWindow::tr("The connection to %1 was lost.").arg(ToText(window_.Session().To().host)),
      Shown(reason ? *reason
            : said ? *said
                   : error.value_or(Text())));
  window_.ShowStatus(Text("Connection lost."));
  Become(State::NotConnected);
}

void ConnectionProgress::Ended(const Message& message) {
  if (!message.FindBool("stopped").value_or(false)) return;
  const auto request = static_cast<std::uint32_t>(message.FindInt32("request").value_or(0));
  if (request == "RCNN"_what && state_ == State::NotConnected) window_.View().ShowLossAgain();
  if (request != "CNNT"_what || state_ != State::Connecting) return;
  Message stopped("FERR"_what);
  stopped.AddText("error", Text("Stopped."));
  Failed(stopped);
}

void ConnectionProgress::ConnectAgain() {
  window_.View().HideLoss();
  window_.Session().ConnectAgain();
}

}  // namespace corvane
