#include "app/shared/CertificateFacts.h"

#include <QCoreApplication>
#include <QDateTime>
#include <algorithm>

#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

struct Certificates {
  Q_DECLARE_TR_FUNCTIONS(corvane::Certificates)
};

/// Certificates count in universal time.
QString UtcDay(std::int64_t moment) {
  return ShortDate(QDateTime::fromSecsSinceEpoch(moment, Qt::UTC).date(), {});
}

/// As many names as a sentence bears.
QString NamesOf(const Certificate& certificate) {
  constexpr std::size_t kMost = 6;
  QStringList names;
  for (std::size_t i = 0; i < std::min(certificate.names.size(), kMost); ++i) {
    names += ToText(certificate.names[i]);
  }
  if (names.isEmpty()) names += ToText(certificate.name);
  if (certificate.names.size() > kMost) names += QStringLiteral("…");
  return names.join(QStringLiteral(", "));
}

}  // namespace

QString DayText(std::int64_t moment) {
  return ShortDate(QDateTime::fromSecsSinceEpoch(moment).date(), {});
}

QString CertificateTitle(const std::string& host) {
  return Certificates::tr("Certificate – %1").arg(ToText(host));
}

QString IssuerText(const Certificate& certificate) {
  const QString issuer = ToText(certificate.issuer);
  const bool itself = (certificate.problems & Certificate::kSelfSigned) != 0;
  return itself ? Certificates::tr("%1 (itself)").arg(issuer) : issuer;
}

QString ValidUntil(const Certificate& certificate) {
  return UtcDay(certificate.notAfter);
}

QString FingerprintLines(const std::string& sha256, std::size_t bytesInLine) {
  QStringList lines;
  for (std::size_t at = 0; at < sha256.size(); at += bytesInLine) {
    lines += QString::fromStdString(FingerprintText(sha256.substr(at, bytesInLine)));
  }
  return lines.join('\n');
}

QString ShortFingerprint(const std::string& sha256) {
  constexpr std::size_t kFirst = 4;
  constexpr std::size_t kLast = 3;
  if (sha256.size() <= kFirst + kLast) return FingerprintLines(sha256, kFirst + kLast);
  return FingerprintLines(sha256.substr(0, kFirst), kFirst) + QStringLiteral(" … ") +
         FingerprintLines(sha256.substr(sha256.size() - kLast), kLast);
}

std::vector<QStringList> CertificateFacts(const Certificate& certificate) {
  constexpr std::size_t kBytesInLine = 16;
  const QString valid =
      Certificates::tr("%1 to %2").arg(UtcDay(certificate.notBefore), ValidUntil(certificate));
  return {{Certificates::tr("Name"), ToText(certificate.name)},
          {Certificates::tr("Issued by"), IssuerText(certificate)},
          {Certificates::tr("Valid"), valid},
          {Certificates::tr("SHA-256"), FingerprintLines(certificate.sha256, kBytesInLine)}};
}

QStringList CertificateFaults(const Certificate& certificate) {
  QStringList faults;
  const auto add = [&](Certificate::Problem problem, const QString& sentence) {
    if ((certificate.problems & problem) != 0) faults += sentence;
  };
  add(Certificate::kExpired,
      Certificates::tr("The certificate expired on %1.").arg(ValidUntil(certificate)));
  add(Certificate::kNotYetValid, Certificates::tr("The certificate is not valid before %1.")
                                     .arg(UtcDay(certificate.notBefore)));
  add(Certificate::kOtherHost, Certificates::tr("The certificate is made out to other names: %1.")
                                   .arg(NamesOf(certificate)));
  add(Certificate::kWeak, Certificates::tr("The certificate is of a kind that is easily forged."));
  add(Certificate::kOther, Certificates::tr("This computer cannot check the certificate."));
  return faults;
}

}  // namespace corvane
