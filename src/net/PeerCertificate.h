#pragma once

#include <cstdint>

#include "util/Certificate.h"

struct x509_st;

namespace corvane {

/// What a certificate says.
[[nodiscard]] Certificate readCertificate(x509_st* certificate);

/// The bit of Certificate::Problem for an error of OpenSSL's verification.
[[nodiscard]] std::uint32_t problemOf(int verifyError);

}  // namespace corvane
