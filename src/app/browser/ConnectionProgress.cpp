#include "app/browser/ConnectionProgress.h"

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
    case Trouble::Other: break;
  }
  return Mend::Nothing;
}

FailurePage::Failure FailureIn(const Message& message) {
  const auto trouble = static_cast<Trouble>(message.FindInt32("kind").value_or(0));
  const auto advice = message.FindText("advice");
  const std::string server = message.FindString("server").value_or("");
  QString text = Shown(advice ? *advice : message.FindText("error").value_or(Text()));
  if (!server.empty()) text += ' ' + MWindow::tr("The server says:");
  return {Heading(trouble), text, ToLines(server), ToMend(trouble)};
}

}  // namespace

ConnectionProgress::ConnectionProgress(BrowserHost& host, MWindow& window)
    : QObject(&window), host_(host), window_(window) {}

void ConnectionProgress::Become(State state) {
  state_ = state;
  Q_EMIT Changed();
}

void ConnectionProgress::Begin() {
  window_.View().ShowConnecting(ToText(window_.Session().To().host));
  Become(State::Connecting);
}

void ConnectionProgress::Show(const ConnectStep& step) {
  if (state_ == State::Connecting) window_.View().Connecting().Show(step);
}

void ConnectionProgress::Stands() {
  if (state_ == State::Connected) return;
  window_.View().HideLoss();
  window_.View().ShowListing();
  Become(State::Connected);
  host_.ConnectionStands(window_.Session().To());
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
