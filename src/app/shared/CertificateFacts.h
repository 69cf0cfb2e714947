#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <string>
#include <vector>

#include "util/Certificate.h"

namespace corvane {

/// A moment, in seconds since 1970, as the day that it is here: "02 Jan 2026".
[[nodiscard]] QString DayText(std::int64_t moment);

/// The title of windows about the certificate of `host`, raw bytes.
[[nodiscard]] QString CertificateTitle(const std::string& host);

/// What a certificate says of itself, as facts of an alert (Alerts::Question::facts). The
/// fingerprint stands last.
[[nodiscard]] std::vector<QStringList> CertificateFacts(const Certificate& certificate);
/// Who says so: "Example CA", "www.example.net (itself)".
[[nodiscard]] QString IssuerText(const Certificate& certificate);
/// The last day on which a certificate holds.
[[nodiscard]] QString ValidUntil(const Certificate& certificate);

/// A fingerprint on lines of so many bytes each.
[[nodiscard]] QString FingerprintLines(const std::string& sha256, std::size_t bytesInLine);
/// Its beginning and end: "5E:1C:9A:44 … EC:04:A9".
[[nodiscard]] QString ShortFingerprint(const std::string& sha256);

/// A sentence for each thing that does not fit, apart from who signed it.
[[nodiscard]] QStringList CertificateFaults(const Certificate& certificate);

}  // namespace corvane
