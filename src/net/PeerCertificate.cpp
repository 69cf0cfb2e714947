#include "net/PeerCertificate.h"

#include <arpa/inet.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <array>
#include <ctime>
#include <memory>
#include <string>

namespace corvane {
namespace {

std::string textOf(const ASN1_STRING* string) {
  unsigned char* utf8 = nullptr;
  const int length = string == nullptr ? -1 : ASN1_STRING_to_UTF8(&utf8, string);
  if (length < 0) return {};
  std::string text(reinterpret_cast<const char*>(utf8), static_cast<std::size_t>(length));
  OPENSSL_free(utf8);
  return text;
}

// The common name, or else the organisation.
std::string nameOf(const X509_NAME* name) {
  for (const int field : {NID_commonName, NID_organizationName}) {
    const int at = X509_NAME_get_index_by_NID(name, field, -1);
    if (at < 0) continue;
    std::string text = textOf(X509_NAME_ENTRY_get_data(X509_NAME_get_entry(name, at)));
    if (!text.empty()) return text;
  }
  return {};
}

std::string addressText(const ASN1_OCTET_STRING* bytes) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  const int family = ASN1_STRING_length(bytes) == 4 ? AF_INET : AF_INET6;
  if (family == AF_INET6 && ASN1_STRING_length(bytes) != 16) return {};
  ::inet_ntop(family, ASN1_STRING_get0_data(bytes), text.data(), text.size());
  return text.data();
}

std::vector<std::string> namesOf(const X509* certificate) {
  std::vector<std::string> names;
  auto* const all = static_cast<GENERAL_NAMES*>(
      X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr));
  for (int i = 0; i < sk_GENERAL_NAME_num(all); ++i) {
    const GENERAL_NAME* const name = sk_GENERAL_NAME_value(all, i);
    if (name->type == GEN_DNS) names.push_back(textOf(name->d.dNSName));
    if (name->type == GEN_IPADD) names.push_back(addressText(name->d.iPAddress));
  }
  GENERAL_NAMES_free(all);
  return names;
}

std::int64_t secondsOf(const ASN1_TIME* time) {
  std::tm parts{};
  return ASN1_TIME_to_tm(time, &parts) == 1 ? static_cast<std::int64_t>(::timegm(&parts)) : 0;
}

}  // namespace

Certificate readCertificate(x509_st* certificate) {
  Certificate read;
  read.names = namesOf(certificate);
  read.name = nameOf(X509_get_subject_name(certificate));
  if (read.name.empty() && !read.names.empty()) read.name = read.names.front();
  if (read.names.empty() && !read.name.empty()) read.names = {read.name};
  read.issuer = nameOf(X509_get_issuer_name(certificate));
  read.notBefore = secondsOf(X509_get0_notBefore(certificate));
  read.notAfter = secondsOf(X509_get0_notAfter(certificate));
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int length = 0;
  if (X509_digest(certificate, EVP_sha256(), digest.data(), &length) == 1)
    read.sha256.assign(digest.begin(), digest.begin() + length);
  return read;
}

std::uint32_t problemOf(int verifyError) {
  switch (verifyError) {
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT: return Certificate::kSelfSigned;
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE: return Certificate::kUnknownIssuer;
    case X509_V_ERR_CERT_HAS_EXPIRED: return Certificate::kExpired;
    case X509_V_ERR_CERT_NOT_YET_VALID: return Certificate::kNotYetValid;
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH: return Certificate::kOtherHost;
    case X509_V_ERR_EE_KEY_TOO_SMALL:
    case X509_V_ERR_CA_KEY_TOO_SMALL:
    case X509_V_ERR_CA_MD_TOO_WEAK: return Certificate::kWeak;
    default: return Certificate::kOther;
  }
}

}  // namespace corvane
