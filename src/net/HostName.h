#pragma once

#include <string>

namespace corvane {

/// The form in which a host is looked up and compared with a certificate: an international name
/// (UTF-8) in its ASCII form (RFC 5891), everything else, addresses too, as it is. What is no valid
/// name stays as it is as well. Any thread.
[[nodiscard]] std::string asciiHost(const std::string& host);
/// Whether it is the address of a host as a number, without a scope.
[[nodiscard]] bool isAddress(const std::string& host);

}  // namespace corvane
