#include "net/NLAddress.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

#include "net/HostName.h"
#include "net/NLException.h"
#include "util/ErrorText.h"

namespace corvane {
namespace {

template <typename Address>
Address As(const sockaddr_storage& storage) {
  Address address{};
  std::memcpy(&address, &storage, sizeof address);
  return address;
}

int ResolverError(int error) {
  switch (error) {
    case EAI_NONAME: return HOST_NOT_FOUND;
    case EAI_NODATA:
    case EAI_ADDRFAMILY: return NO_DATA;
    case EAI_AGAIN: return TRY_AGAIN;
    case EAI_FAIL: return NO_RECOVERY;
    default: return NETDB_INTERNAL;
  }
}

std::vector<NLAddress> AskResolver(const std::string& host, std::uint16_t port, int family) {
  addrinfo hints{};
  hints.ai_family = family;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  const int error = ::getaddrinfo(asciiHost(host).c_str(), nullptr, &hints, &list);
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(list, ::freeaddrinfo);
  std::vector<NLAddress> found;
  for (const addrinfo* each = error == 0 ? list : nullptr; each != nullptr; each = each->ai_next) {
    if (each->ai_family != AF_INET && each->ai_family != AF_INET6) continue;
    sockaddr_storage storage{};
    std::memcpy(&storage, each->ai_addr, each->ai_addrlen);
    const NLAddress address = NLAddress(storage).withPort(port);
    const auto isSame = [&](const NLAddress& other) { return other.isSameHost(address); };
    if (std::ranges::none_of(found, isSame)) found.push_back(address);
  }
  if (!found.empty()) return found;
  // The resolver's own number goes to the general error text.
  throw NLException("NLAddress::set", "::gethostbyname failed for host name " + host + ": " +
                                          ErrorText(ResolverError(error)));
}

}  // namespace

std::vector<NLAddress> NLAddress::all(const std::string& host, std::uint16_t port) {
  return AskResolver(host, port, AF_UNSPEC);
}

void NLAddress::set(const char* host, std::uint16_t port) {
  in_addr address{};
  if (host != nullptr) {
    address.s_addr = ::inet_addr(host);
    if (address.s_addr == 0 || address.s_addr == INADDR_NONE) {
      const int family = std::strchr(host, ':') != nullptr ? AF_INET6 : AF_INET;
      *this = AskResolver(host, port, family).front();
      return;
    }
  }
  p_set(address, port);
}

void NLAddress::set(e_addr address, int port) {
  p_set(in_addr{address}, static_cast<std::uint16_t>(port));
}

void NLAddress::set(in_addr address, int port) {
  p_set(address, static_cast<std::uint16_t>(port));
}

void NLAddress::set(const sockaddr_in& address) {
  address_ = sockaddr_storage{};
  std::memcpy(&address_, &address, sizeof address);
}

void NLAddress::get(sockaddr_in& out) const {
  if (family() == AF_INET6) {
    out = sockaddr_in{AF_INET, htons(port()), {}, {}};
  } else {
    out = As<sockaddr_in>(address_);
  }
}

void NLAddress::get(in_addr& out, std::uint16_t* port) const {
  sockaddr_in address{};
  get(address);
  out = address.sin_addr;
  if (port != nullptr) *port = this->port();
}

void NLAddress::get(char* text, std::uint16_t* port) const {
  if (port != nullptr) *port = this->port();
  const auto address = As<sockaddr_in>(address_);
  if (text != nullptr && family() != AF_INET6) {
    ::inet_ntop(AF_INET, &address.sin_addr, text, INET_ADDRSTRLEN);
  }
}

socklen_t NLAddress::length() const {
  return family() == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
}

// The port stands in the same place in both families.
std::uint16_t NLAddress::port() const {
  return ntohs(As<sockaddr_in>(address_).sin_port);
}

std::string NLAddress::text() const {
  char name[NI_MAXHOST] = "";
  ::getnameinfo(reinterpret_cast<const sockaddr*>(&address_), length(), name, sizeof name, nullptr,
                0, NI_NUMERICHOST);
  return name;
}

NLAddress NLAddress::withPort(std::uint16_t port) const {
  NLAddress copy = *this;
  const in_port_t ordered = htons(port);
  static_assert(offsetof(sockaddr_in, sin_port) == offsetof(sockaddr_in6, sin6_port));
  std::memcpy(reinterpret_cast<char*>(&copy.address_) + offsetof(sockaddr_in, sin_port), &ordered,
              sizeof ordered);
  return copy;
}

bool NLAddress::isSameHost(const NLAddress& other) const {
  if (family() != other.family()) return false;
  if (family() != AF_INET6) {
    return As<sockaddr_in>(address_).sin_addr.s_addr ==
           As<sockaddr_in>(other.address_).sin_addr.s_addr;
  }
  const auto here = As<sockaddr_in6>(address_);
  const auto there = As<sockaddr_in6>(other.address_);
  return IN6_ARE_ADDR_EQUAL(&here.sin6_addr, &there.sin6_addr);
}

bool NLAddress::isAny() const {
  if (family() != AF_INET6) return As<sockaddr_in>(address_).sin_addr.s_addr == 0;
  const auto address = As<sockaddr_in6>(address_);
  return IN6_IS_ADDR_UNSPECIFIED(&address.sin6_addr);
}

void NLAddress::p_set(in_addr address, std::uint16_t port) {
  set(sockaddr_in{AF_INET, htons(port), address, {}});
}

}  // namespace corvane
