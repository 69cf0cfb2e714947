#include "net/HostName.h"

#include <arpa/inet.h>
#include <idn2.h>

#include <algorithm>
#include <cstdint>

namespace corvane {

std::string asciiHost(const std::string& host) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::ranges::all_of(host, isAscii)) return host;
  std::uint8_t* ascii = nullptr;
  const int result = ::idn2_lookup_u8(reinterpret_cast<const std::uint8_t*>(host.c_str()), &ascii,
                                      IDN2_NFC_INPUT | IDN2_NONTRANSITIONAL);
  if (result != IDN2_OK) return host;
  std::string found = reinterpret_cast<const char*>(ascii);
  ::idn2_free(ascii);
  return found;
}

bool isAddress(const std::string& host) {
  in6_addr address{};
  return ::inet_pton(AF_INET, host.c_str(), &address) == 1 ||
         ::inet_pton(AF_INET6, host.c_str(), &address) == 1;
}

}  // namespace corvane
