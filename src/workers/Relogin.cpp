#include "workers/Relogin.h"

#include "remote/RemoteSession.h"
#include "workers/Notices.h"

namespace corvane {

Outcome Relogin::Ready() {
  said_ = {};
  Outcome outcome;
  if (!session_.IsAlive()) outcome = LogIn();
  answers_ = session_.Answers();
  return outcome;
}

bool Relogin::MayRepeat(const Outcome& outcome) const {
  return outcome.kind == Outcome::Kind::Lost && session_.Answers() == answers_ &&
         !session_.HowLost().maybeChanged;
}

// A login that is refused is a loss too, but not the one that the user is to hear of.
Outcome Relogin::LogIn() {
  if (failed_.IsEmpty()) loss_ = session_.HowLost();
  window_.AppendLog(Text("The connection was lost: %1", loss_.why).English() + "\n");
  Outcome outcome = session_.Connect();
  if (outcome.kind == Outcome::Kind::Cancelled) return outcome;
  if (!outcome.IsDone()) {
    failed_ = outcome.text;
    outcome.kind = Outcome::Kind::Lost;
    return outcome;
  }
  failed_ = {};
  said_ = LoggedInAnew(loss_);
  window_.AppendLog(said_.English() + "\n");
  return outcome;
}

void Relogin::TellLoss() {
  const bool tried = !failed_.IsEmpty();
  corvane::TellLoss(window_, session_.Host(), tried ? loss_ : session_.HowLost(), failed_);
}

}  // namespace corvane
