#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "sites/KnownServers.h"

namespace corvane {

/// What the preferences window needs of the memory of servers. GUI thread.
struct TrustedCertificates {
  std::function<std::vector<KnownServers::Entry>()> list{};
  std::function<void(const std::string& host, std::uint16_t port)> remove{};
};

}  // namespace corvane
