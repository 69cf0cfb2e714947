#include <utility>

#include "ftp/AskTogether.h"
#include "ftp/FtpFailure.h"
#include "ftp/MFtp.h"
#include "ftp/SiteWay.h"
#include "net/HostName.h"
#include "net/TlsContext.h"
#include "net/TlsStream.h"
#include "remote/TrustRules.h"

namespace corvane {
namespace {

using Kind = ConnectStep::Kind;
using State = ConnectStep::State;
using Answer = UserQuestion::Answer;
using Asked = UserQuestion::Kind;

constexpr int kGone = 421;

Outcome NotEncrypted(const Text& why) {
  return {Outcome::Kind::Refused, 0, why, {}, Outcome::Trouble::NoEncryption};
}

}  // namespace

std::pair<const std::string&, std::uint16_t> MFtp::Peer() const {
  return PeerOf(site_);
}

KnownServer MFtp::Known() const {
  const auto [host, port] = Peer();
  return trust_ ? trust_->Find(host, port) : KnownServer();
}

// The answer of a user who has cancelled meanwhile is thrown as that.
Answer MFtp::Ask(UserQuestion::Kind kind, const Certificate& certificate, std::string* text) {
  const auto [host, port] = Peer();
  const auto question = std::make_shared<UserQuestion>(UserQuestion::Subject{
      kind, host, port, site_.user, certificate, Known().trusted, site_.clientCertificate});
  asked_ = true;
  (void)Tell(Text("Waiting for your answer."));
  if (!owner_->Ask(question)) throw FtpFailure{Outcome::Cancelled()};
  const Answer answer = question->Wait([this] { return !control_.IsInterrupted(); });
  if (control_.IsInterrupted()) throw FtpFailure{Outcome::Cancelled()};
  if (text != nullptr) *text = question->Text();
  return answer;
}

Outcome MFtp::Protect() {
  if (site_.security == Security::Plain) return StayPlain();
  if (site_.security == Security::Implicit) return {};
  if (!Tell(Text("Encrypting the connection."))) return Outcome::Cancelled();
  const Reply reply = control_.SendCommand("AUTH TLS");
  if (reply.IsCompletion()) return Encrypt();
  const bool hasNone = reply.code >= 500;
  if (!hasNone || site_.security == Security::Required) {
    Outcome outcome = FtpControl::CheckResult(reply, Text("The server does not offer encryption."));
    if (outcome.IsDone()) outcome = NotEncrypted(Text("The server does not offer encryption."));
    outcome.trouble = Outcome::Trouble::NoEncryption;
    if (reply.code != kGone) outcome.kind = Outcome::Kind::Refused;
    return outcome;
  }
  return MayStayPlain();
}

Outcome MFtp::MayStayPlain() {
  const KnownServer known = Known();
  if (AsksBeforePlain(site_, known)) {
    const Asked kind = known.wasEncrypted ? Asked::NoMoreEncryption : Asked::PlainPassword;
    const Answer answer = Ask(kind, {}, nullptr);
    if (answer == Answer::No) {
      return NotEncrypted(
          known.wasEncrypted
              ? Text("The server was encrypted before and does not offer encryption any more. "
                     "Nothing was sent to it.")
              : Text("The server does not offer encryption, and the password was not sent."));
    }
    const auto [host, port] = Peer();
    if (trust_) trust_->AllowPlain(host, port, answer == Answer::Always);
  }
  return StayPlain();
}

Outcome MFtp::StayPlain() {
  Step(Kind::Encryption, State::Done, Text("Not encrypted."));
  owner_->ShowProtection({});
  return {};
}

std::shared_ptr<const TlsContext> MFtp::Context() {
  if (context_) return context_;
  if (site_.clientCertificate.empty()) return context_ = TlsContext::usual();
  return context_ =
             TlsContext::with(site_.clientCertificate, [this]() -> std::optional<std::string> {
               std::string passphrase;
               if (Ask(Asked::Passphrase, {}, &passphrase) == Answer::No) return std::nullopt;
               return passphrase;
             });
}

// From the handshake to a certificate that is trusted.
Outcome MFtp::Encrypt() {
  const auto [host, port] = Peer();
  Step(Kind::Encryption, State::Running, Text("Encrypting the connection …"));
  try {
    (void)Context();
  } catch (const TlsContextFailure& failure) {
    return NotEncrypted(
        Text::WithReason(Text("The certificate of yours cannot be used."), failure.why));
  }
  control_.Encrypt(Context(), asciiHost(host));
  const TlsStream& tls = *control_.Encryption();
  const Certificate& certificate = tls.certificate();
  if (Outcome outcome = Judge(certificate); !outcome.IsDone()) return outcome;
  if (trust_) trust_->NoteEncrypted(host, port);
  control_.UpdateLog(tls.protocol() + ", " + tls.cipher() + "\n");
  Step(Kind::Encryption, State::Done, Text("Encrypted, %1.", tls.protocol()));
  owner_->ShowProtection({true, tls.protocol(), tls.cipher(), certificate});
  return {};
}

Outcome MFtp::Judge(const Certificate& certificate) {
  const KnownServer server = Known();
  if (IsTrusted(certificate, server)) return {};
  const auto& known = server.trusted;
  const bool changed = known && known->certificate.sha256 != certificate.sha256;
  const Answer answer =
      Ask(changed ? Asked::ChangedCertificate : Asked::UnknownCertificate, certificate, nullptr);
  const auto [host, port] = Peer();
  if (answer == Answer::No) {
    return {Outcome::Kind::Refused,
            0,
            Text("The certificate of %1 is not trusted.", host),
            {},
            Outcome::Trouble::Certificate};
  }
  if (trust_) trust_->Trust(host, port, certificate, answer == Answer::Always);
  return {};
}

// RFC 4217, 9: without this the data would go in plain text.
Outcome MFtp::ProtectData() {
  data_.SetProtected(false);
  if (control_.Encryption() == nullptr) return {};
  const std::vector<Reply> replies = AskTogether(control_, *habits_, {"PBSZ 0", "PROT P"}, false);
  Outcome outcome = FtpControl::CheckResult(
      replies.back(), Text("The server does not encrypt listings and transfers."));
  data_.SetProtected(outcome.IsDone());
  if (!outcome.IsDone()) outcome.trouble = Outcome::Trouble::NoEncryption;
  return outcome;
}

}  // namespace corvane
