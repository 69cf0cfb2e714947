#pragma once

#include <netinet/in.h>

#include <atomic>
#include <cstdint>

#include "net/NLAddress.h"

namespace corvane {

/// A loopback address that no other server of this process has.
inline NLAddress NextHost() {
  static std::atomic<std::uint32_t> last = 0x7F010000;
  return {in_addr{htonl(++last)}, 0};
}

}  // namespace corvane
