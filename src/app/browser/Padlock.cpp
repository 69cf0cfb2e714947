#include "app/browser/Padlock.h"

#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserView.h"
#include "app/browser/MWindow.h"
#include "app/browser/PathField.h"
#include "app/shared/Alerts.h"
#include "app/shared/CertificateFacts.h"
#include "app/shared/ScreenText.h"
#include "app/shared/StatusLine.h"
#include "app/shared/TransferView.h"

namespace corvane {

Padlock::Padlock(MWindow& window) : QObject(&window), window_(window) {
  connect(&window_.View().Path(), &PathField::LockPressed, this, &Padlock::ShowDetails);
  connect(&window_.View().Status(), &StatusLine::SignPressed, this, &Padlock::ShowDetails);
}

void Padlock::Set(const Protection& protection) {
  protection_ = protection;
  Show();
}

void Padlock::SetConnected(bool connected) {
  if (connected_ && !connected) protection_.reset();
  connected_ = connected;
  Show();
}

void Padlock::Show() {
  StatusLine& status = window_.View().Status();
  PathField& path = window_.View().Path();
  if (!IsShown()) {
    status.SetSign("", {}, Tone::Secondary);
    path.ShowLock(nullptr, {}, Tone::Secondary);
    return;
  }
  const bool safe = protection_->encrypted;
  const Tone tone = safe ? Tone::Secondary : Tone::Caution;
  const QString words =
      safe ? tr("Encrypted, %1").arg(ToText(protection_->protocol)) : tr("Not encrypted");
  const char* symbol = safe ? "lock" : "lock-open";
  status.SetSign(symbol, words, tone);
  status.PutSignBehind(*window_.View().Transfer().focusProxy());
  path.ShowLock(symbol, words, tone);
}

void Padlock::ShowDetails() {
  if (!IsShown()) return;
  const QString host = ToText(window_.Session().To().host);
  Alerts::Question details;
  details.title = tr("Security – %1").arg(host);
  details.subject = details.title;
  details.buttons = {tr("&Close")};
  if (protection_->encrypted) {
    const bool known = protection_->certificate.problems == 0;
    details.sign = {"lock", Tone::Good};
    details.heading = tr("The connection to %1 is encrypted.").arg(host);
    details.advice = tr("Nobody on its way can read or change your password and your files.");
    details.facts = {{tr("Protocol"), ToText(protection_->protocol)},
                     {tr("Cipher"), ToText(protection_->cipher)},
                     {tr("Trusted by"), known ? tr("this computer") : tr("you")}};
    for (QStringList& fact : CertificateFacts(protection_->certificate)) {
      details.facts.push_back(std::move(fact));
    }
    details.fixedFact = static_cast<int>(details.facts.size()) - 1;
  } else {
    const bool chosen = window_.Session().To().security == Security::Plain;
    details.sign = {"lock-open", Tone::Caution};
    details.heading = tr("The connection to %1 is not encrypted.").arg(host);
    details.advice =
        tr("Everybody on its way can read and change your password and your files.") + ' ' +
        (chosen ? tr("You have chosen “Never” as its encryption.")
                : tr("The server offers no encryption. With “Always” as its encryption Corvane "
                     "would not have connected."));
  }
  details.text = details.heading + QStringLiteral("\n\n") + details.advice;
  Alerts::Show(&window_, details);
}

}  // namespace corvane
