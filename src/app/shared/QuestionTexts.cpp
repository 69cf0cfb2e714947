#include "app/shared/QuestionTexts.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "app/shared/CertificateFacts.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

using Subject = UserQuestion::Subject;
using Kind = UserQuestion::Kind;
using Answer = UserQuestion::Answer;

struct Questions {
  Q_DECLARE_TR_FUNCTIONS(corvane::Questions)
};

constexpr std::size_t kBytesInHalfLine = 8;

const char* const kDontConnect = QT_TRANSLATE_NOOP("corvane::Questions", "&Don’t Connect");

Alerts::Question Unknown(const Subject& subject) {
  const Certificate& certificate = subject.certificate;
  constexpr auto kUnsigned = Certificate::kSelfSigned | Certificate::kUnknownIssuer;
  QStringList sentences;
  if ((certificate.problems & kUnsigned) != 0) {
    sentences += Questions::tr(
        "Nobody whom this computer trusts has signed the server’s "
        "certificate.");
  }
  sentences += CertificateFaults(certificate);
  sentences += Questions::tr("Someone between you and the server could read your password.");
  Alerts::Question alert;
  alert.sign = {"shield", Tone::Caution};
  alert.title = CertificateTitle(subject.host);
  alert.heading = Questions::tr("Is this really %1?").arg(ToText(subject.host));
  alert.advice = sentences.join(' ');
  alert.facts = CertificateFacts(certificate);
  alert.note = Questions::tr("Compare the SHA-256 figures with those its administrator gives you.");
  alert.buttons = {Questions::tr("Trust &Once"), Questions::tr("&Always Trust"),
                   Questions::tr(kDontConnect)};
  return alert;
}

Alerts::Question Changed(const Subject& subject) {
  const Certificate& now = subject.certificate;
  const KnownCertificate before = subject.known.value_or(KnownCertificate());
  const Certificate& then = before.certificate;
  QStringList sentences{
      Questions::tr("The server may have a new one, or someone stands between you and it. Nothing "
                    "has been sent yet. Ask its administrator before you trust it.")};
  sentences += CertificateFaults(now);
  Alerts::Question alert;
  alert.sign = {"triangle", Tone::Bad};
  alert.title = CertificateTitle(subject.host);
  alert.heading = Questions::tr("The certificate of %1 has changed.").arg(ToText(subject.host));
  alert.advice = sentences.join(' ');
  alert.facts = {{QString(), Questions::tr("Known since %1").arg(DayText(before.since)),
                  Questions::tr("Shown now")},
                 {Questions::tr("Issued by"), IssuerText(then), IssuerText(now)},
                 {Questions::tr("Valid until"), ValidUntil(then), ValidUntil(now)},
                 {Questions::tr("SHA-256"), FingerprintLines(then.sha256, kBytesInHalfLine),
                  FingerprintLines(now.sha256, kBytesInHalfLine)}};
  alert.buttons = {Questions::tr("&Trust the New One"), Questions::tr(kDontConnect)};
  return alert;
}

Alerts::Question Unencrypted(const Subject& subject, const QString& heading, const QString& advice,
                             const QString& verb) {
  Alerts::Question alert;
  alert.sign = {"lock-open", Tone::Caution};
  alert.title = Questions::tr("Encryption – %1").arg(ToText(subject.host));
  alert.heading = heading.arg(ToText(subject.host));
  alert.advice = advice;
  alert.tick = Questions::tr("Do not &ask again for this server");
  alert.buttons = {verb, Questions::tr(kDontConnect)};
  return alert;
}

Alerts::Question Locked(const Subject& subject) {
  Alerts::Question alert;
  alert.sign = {"lock", Tone::Running};
  alert.title = Questions::tr("Client certificate – %1").arg(ToText(subject.host));
  alert.heading = Questions::tr("Your client certificate is locked.");
  alert.advice = Questions::tr("Enter the passphrase that unlocks %1.")
                     .arg(QFileInfo(ToText(subject.file)).fileName());
  alert.field = Questions::tr("&Passphrase:");
  alert.buttons = {Questions::tr("Un&lock"), Questions::tr("&Cancel")};
  alert.preset = 0;
  return alert;
}

Alerts::Question AccountOf(const Subject& subject) {
  Alerts::Question alert;
  alert.sign = {"lock", Tone::Running};
  alert.title = Questions::tr("Account – %1").arg(ToText(subject.host));
  alert.heading = Questions::tr("%1 asks for an account.").arg(ToText(subject.host));
  alert.advice = Questions::tr(
                     "It wants one in addition to the password of %1. Its administrator can "
                     "tell you what to enter.")
                     .arg(ToText(subject.user));
  alert.field = Questions::tr("&Account:");
  alert.buttons = {Questions::tr("&Log In"), Questions::tr("&Cancel")};
  alert.preset = 0;
  return alert;
}

Alerts::Question ByKind(const Subject& subject) {
  switch (subject.kind) {
    case Kind::UnknownCertificate: return Unknown(subject);
    case Kind::ChangedCertificate: return Changed(subject);
    case Kind::NoMoreEncryption:
      return Unencrypted(
          subject, Questions::tr("%1 offers no encryption any more."),
          Questions::tr("It has done so before. Someone between you and the server may keep it "
                        "from you, to read your password and your files. Ask its administrator "
                        "before you go on."),
          Questions::tr("Connect &Unencrypted"));
    case Kind::PlainPassword:
      return Unencrypted(subject, Questions::tr("Send your password to %1 unencrypted?"),
                         Questions::tr("This connection is not encrypted: everybody on its way can "
                                       "read your password and your files."),
                         Questions::tr("&Send Unencrypted"));
    case Kind::Account: return AccountOf(subject);
    case Kind::Passphrase: break;
  }
  return Locked(subject);
}

}  // namespace

Alerts::Question AlertFor(const Subject& subject) {
  const auto last = [](const Alerts::Question& alert) {
    return static_cast<int>(alert.buttons.size()) - 1;
  };
  Alerts::Question alert = ByKind(subject);
  if (alert.field.isEmpty()) alert.preset = last(alert);
  if (!alert.facts.empty()) alert.fixedFact = static_cast<int>(alert.facts.size()) - 1;
  alert.subject = alert.title;
  alert.text = alert.heading + QStringLiteral("\n\n") + alert.advice;
  return alert;
}

UserQuestion::Answer AnswerOf(Kind kind, int button, bool ticked) {
  switch (kind) {
    case Kind::UnknownCertificate:
      return button == 0 ? Answer::Once : button == 1 ? Answer::Always : Answer::No;
    case Kind::ChangedCertificate: return button == 0 ? Answer::Always : Answer::No;
    case Kind::NoMoreEncryption:
    case Kind::PlainPassword:
      return button != 0 ? Answer::No : ticked ? Answer::Always : Answer::Once;
    case Kind::Passphrase:
    case Kind::Account: break;
  }
  return button == 0 ? Answer::Once : Answer::No;
}

}  // namespace corvane
