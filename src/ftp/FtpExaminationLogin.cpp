#include <algorithm>
#include <cctype>
#include <utility>

#include "ftp/FtpExamination.h"
#include "ftp/FtpFailure.h"
#include "ftp/SiteWay.h"
#include "net/HostName.h"
#include "net/TlsContext.h"
#include "net/TlsStream.h"
#include "remote/TrustRules.h"

namespace corvane {
namespace {

using Behind = PortProbe::Behind;
using Sign = DiagnosisStep::Sign;
using Step = DiagnosisStep;

constexpr int kGone = 421;
constexpr int kNeedsPassword = 331;
constexpr int kNeedsAccount = 332;

Step Bad(Finding finding, Text seen) {
  return {.sign = Sign::Bad, .seen = std::move(seen), .finding = finding};
}

Step Good(Text seen) {
  return {.sign = Sign::Good, .seen = std::move(seen)};
}

Step Caution(Finding finding, Text seen) {
  return {.sign = Sign::Caution, .seen = std::move(seen), .finding = finding};
}

std::string Lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

template <typename... Words>
bool Says(const std::string& text, Words... words) {
  return ((text.find(words) != std::string::npos) || ...);
}

}  // namespace

Step FtpExamination::Encryption() {
  switch (site_.security) {
    case Security::Plain:
      return Caution(Finding::NotEncrypted, Text("The connection is to stay unencrypted."));
    case Security::Implicit: return Handshake();
    case Security::Automatic:
    case Security::Required: break;
  }
  Reply reply;
  const Outcome asked = control_.Guard(
      [&]() -> Outcome { return reply = control_.SendCommand("AUTH TLS"), Outcome(); });
  if (!asked.IsDone())
    return Bad(asked.trouble == Outcome::Trouble::NoAnswer ? Finding::EncryptionHangs
                                                           : Finding::EncryptionFails,
               Why(asked));
  return reply.IsCompletion() ? Handshake() : StayPlain(reply);
}

Step FtpExamination::StayPlain(const Reply& reply) const {
  const Text words = Text::Raw(Heard(reply.Words()));
  if (reply.code < 500 || site_.security == Security::Required)
    return Bad(Finding::NoEncryption, Text("The server does not encrypt: %1", words));
  const auto [host, port] = PeerOf(site_);
  KnownServer known = trust_ ? trust_->Find(host, port) : KnownServer();
  known.wasEncrypted = known.wasEncrypted || wasEncrypted_;
  if (!AsksBeforePlain(site_, known))
    return Caution(Finding::NotEncrypted, Text("The server does not encrypt: %1", words));
  if (known.wasEncrypted)
    return Bad(Finding::LostEncryption,
               Text("The server was encrypted before, and is not any more: %1", words));
  return Bad(Finding::PlainPassword,
             Text("The server does not encrypt, so that the password was not sent: %1", words));
}

Step FtpExamination::Handshake() {
  std::shared_ptr<const TlsContext> context;
  try {
    context = site_.clientCertificate.empty()
                  ? TlsContext::usual()
                  : TlsContext::with(site_.clientCertificate,
                                     []() -> std::optional<std::string> { return std::nullopt; });
  } catch (const TlsContextFailure& failure) {
    return Bad(Finding::OwnCertificate,
               Text("The certificate of yours cannot be used: %1", failure.why));
  }
  const Outcome shaken = control_.Guard([&]() -> Outcome {
    return control_.Encrypt(context, asciiHost(PeerOf(site_).first)), Outcome();
  });
  if (shaken.IsDone()) {
    Step step = Judge();
    wasEncrypted_ = wasEncrypted_ || step.sign == Sign::Good;
    return step;
  }
  const bool atOnce = site_.security == Security::Implicit;
  if (atOnce && Probe().Listen(site_.port, Share(4)) == Behind::Ftp)
    return Bad(Finding::EncryptsLater, Text("The server begins without encryption."));
  return Bad(Finding::EncryptionFails, Why(shaken));
}

Step FtpExamination::Judge() const {
  const TlsStream& tls = *control_.Encryption();
  const Certificate& certificate = tls.certificate();
  const auto [host, port] = PeerOf(site_);
  const KnownServer known = trust_ ? trust_->Find(host, port) : KnownServer();
  if (certificate.problems == 0)
    return Good(Text("%1, the certificate is trusted by this computer.", tls.protocol()));
  if (IsTrusted(certificate, known))
    return Good(Text("%1, you have trusted the certificate.", tls.protocol()));
  const Text whose("Its certificate, %1, was made out to %2 by %3.",
                   FingerprintText(certificate.sha256).substr(0, 11) + "…", certificate.name,
                   certificate.issuer);
  if (known.trusted && known.trusted->certificate.sha256 != certificate.sha256)
    return Bad(Finding::CertificateChanged,
               Text("The certificate is not the one that you trust. %1", whose));
  const std::uint32_t problems = certificate.problems;
  if ((problems & (Certificate::kExpired | Certificate::kNotYetValid)) != 0)
    return Bad(Finding::CertificateExpired, Text("The certificate is not valid today. %1", whose));
  if ((problems & Certificate::kOtherHost) != 0)
    return Bad(Finding::CertificateOfOther,
               Text("The certificate is not that of %1. %2", host, whose));
  return Bad(Finding::CertificateUnknown,
             Text("Nobody whom this computer trusts vouches for the server. %1", whose));
}

// As for any connection to the site, one server may serve several hosts (RFC 7151).
void FtpExamination::NameHost() {
  if (site_.proxy && site_.proxy->kind == Proxy::Kind::Ftp) return;
  const Reply reply = control_.SendCommand("FEAT");
  if (!reply.IsCompletion()) return;
  featureReply_ = reply;
  const std::string& host = site_.host;
  const bool isAddress = host.find_first_not_of("0123456789.") == std::string::npos ||
                         host.find(':') != std::string::npos;
  if (ReadFeatures(reply.text).hosts && !isAddress)
    (void)control_.SendCommand("HOST " + asciiHost(host));
}

Step FtpExamination::Login() {
  NameHost();
  Reply reply = control_.SendCommand("USER " + LoginName(site_));
  if (reply.code == kNeedsPassword) reply = control_.SendPassword("PASS " + site_.password);
  if (!reply.IsCompletion()) return Refused(reply);
  data_.SetProtected(false);
  if (control_.Encryption() != nullptr) {
    (void)control_.SendCommand("PBSZ 0");
    const Reply protection = control_.SendCommand("PROT P");
    if (!protection.IsCompletion())
      return Bad(Finding::DataUnprotected,
                 Text("The server does not encrypt listings and transfers: %1",
                      Heard(protection.Words())));
    data_.SetProtected(true);
  }
  return Good(Text("%1 is accepted.", site_.user));
}

Step FtpExamination::Refused(const Reply& reply) const {
  const Text words = Text("The server says: %1", Heard(WithoutLineEnd(reply.text)));
  const std::string said = Lower(reply.text);
  const Outcome judged = FtpControl::CheckResult(reply);
  if (control_.Encryption() == nullptr && Says(said, "tls", "ssl", "encrypt", "secure"))
    return Bad(Finding::NeedsEncryption, words);
  if (judged.trouble == Outcome::Trouble::TooMany) return Bad(Finding::TooMany, words);
  if (Says(said, "locked", "disabled", "suspended", "expired", "blocked", "banned"))
    return Bad(Finding::Locked, words);
  if (reply.code == kGone) return Bad(Finding::Unavailable, words);
  if (reply.code == kNeedsAccount)
    return Bad(Finding::Unavailable,
               Text("The server asks for an account in addition to the password: %1",
                    Heard(reply.Words())));
  const bool anonymous = site_.user == "anonymous" || site_.user == "ftp";
  return Bad(anonymous ? Finding::NotAnonymous : Finding::WrongLogin, words);
}

// Some servers have their list for those only who are logged in.
Step FtpExamination::Features() {
  constexpr int kSystemType = 215;
  if (!featureReply_) featureReply_ = control_.SendCommand("FEAT");
  const bool has = featureReply_->IsCompletion();
  if (has) features_ = ReadFeatures(featureReply_->text);
  if (features_.utf8) (void)control_.SendCommand("OPTS UTF8 ON");
  const Reply system = control_.SendCommand("SYST");
  const bool dos = system.code == kSystemType && system.Words().starts_with("Windows_NT");
  listCommand_ = dos ? "LIST" : "LIST -la";
  const Text type = system.code == kSystemType ? Text::Raw(Heard(system.Words())) : Text("unknown");
  if (!has) return Good(Text("No list of features; the system is %1.", type));
  const auto lines = std::ranges::count(featureReply_->text, '\n');
  return Good(Text("%1 features; the system is %2.", std::max<std::ptrdiff_t>(lines - 2, 0), type));
}

Step FtpExamination::Directory() {
  if (!site_.path.empty()) {
    const Reply entered = control_.SendCommand("CWD " + site_.path);
    if (!entered.IsCompletion())
      return Bad(Finding::NoDirectory,
                 Text("The server does not open %1: %2", site_.path, Heard(entered.Words())));
  }
  const Reply reply = control_.SendCommand("PWD");
  if (!reply.IsCompletion())
    return Caution(Finding::NoDirectory,
                   Text("The server does not tell where it stands: %1", Heard(reply.Words())));
  return Good(Text("The server says: %1", Heard(reply.Words())));
}

}  // namespace corvane
