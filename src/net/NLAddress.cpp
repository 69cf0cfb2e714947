#include "net/NLAddress.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "net/NLException.h"
#include "util/ErrorText.h"

namespace corvane {
namespace {

in_addr AskResolver(const char* host) {
  constexpr std::size_t kLargest = std::size_t{1} << 20;
  std::vector<char> buffer(1024);
  hostent storage{};
  hostent* entry = nullptr;
  int resolverError = 0;
  while (::gethostbyname_r(host, &storage, buffer.data(), buffer.size(), &entry, &resolverError) ==
             ERANGE &&
         buffer.size() < kLargest) {
    buffer.resize(buffer.size() * 2);
  }
  in_addr address{};
  if (entry == nullptr || entry->h_addrtype != AF_INET || entry->h_addr_list[0] == nullptr) {
    // The resolver's own number goes to the general error text.
    throw NLException("NLAddress::set", std::string("::gethostbyname failed for host name ") +
                                            host + ": " + ErrorText(resolverError));
  }
  std::memcpy(&address, entry->h_addr_list[0], sizeof address);
  return address;
}

}  // namespace

void NLAddress::set(const char* host, std::uint16_t port) {
  in_addr address{};
  if (host != nullptr) {
    address.s_addr = ::inet_addr(host);
    if (address.s_addr == 0 || address.s_addr == INADDR_NONE) address = AskResolver(host);
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
  address_ = address;
}

void NLAddress::get(sockaddr_in& out) const {
  out = address_;
}

void NLAddress::get(in_addr& out, std::uint16_t* port) const {
  out = address_.sin_addr;
  if (port != nullptr) *port = ntohs(address_.sin_port);
}

void NLAddress::get(char* text, std::uint16_t* port) const {
  if (port != nullptr) *port = ntohs(address_.sin_port);
  if (text != nullptr) ::inet_ntop(AF_INET, &address_.sin_addr, text, INET_ADDRSTRLEN);
}

void NLAddress::p_set(in_addr address, std::uint16_t port) {
  address_ = sockaddr_in{};
  address_.sin_family = AF_INET;
  address_.sin_addr = address;
  address_.sin_port = htons(port);
}

}  // namespace corvane
