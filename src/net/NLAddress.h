#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <string>
#include <vector>

namespace corvane {

/// One IPv4 or IPv6 socket address. A value; every setter replaces the whole of it.
class NLAddress {
 public:
  /// Well-known addresses, stored as they stand.
  enum e_addr : std::uint32_t { any = 0 };

  NLAddress(const char* host = nullptr, std::uint16_t port = 0) { set(host, port); }
  NLAddress(e_addr address, int port) { set(address, port); }
  NLAddress(in_addr address, int port) { set(address, port); }
  explicit NLAddress(const sockaddr_in& address) { set(address); }
  explicit NLAddress(const sockaddr_storage& address) { set(address); }

  /// Every address of a host, of either family, in the order in which the system would try them.
  /// Takes addresses ("10.0.0.1", "::1", "fe80::1%eth0") and names, international ones in UTF-8;
  /// blocks while it asks the resolver. Any thread. Throws NLException where there is none.
  [[nodiscard]] static std::vector<NLAddress> all(const std::string& host, std::uint16_t port);

  /// Takes an address as it is and asks the resolver for everything else, 0.0.0.0 and
  /// 255.255.255.255 included; blocks while it does. A name stands for its first IPv4 address.
  /// Re-entrant. Null is the empty address. Throws NLException, leaving the address as it was, when
  /// the name cannot be resolved.
  void set(const char* host, std::uint16_t port);
  void set(e_addr address, int port);
  void set(in_addr address, int port);
  void set(const sockaddr_in& address);
  void set(const sockaddr_storage& address) { address_ = address; }

  // These three know IPv4 only: of an IPv6 address they give the port, and 0.0.0.0 or no text.
  void get(sockaddr_in& out) const;
  /// `port`, when not null, receives the port in host order.
  void get(in_addr& out, std::uint16_t* port) const;
  /// `text`, when not null, receives the dotted quad; at least 16 bytes.
  void get(char* text, std::uint16_t* port) const;

  /// The address as system calls take it; length() bytes of it count.
  void get(sockaddr_storage& out) const { out = address_; }
  [[nodiscard]] socklen_t length() const;

  /// AF_INET or AF_INET6.
  [[nodiscard]] int family() const { return address_.ss_family; }
  /// In host order.
  [[nodiscard]] std::uint16_t port() const;
  /// The address without its port: "10.0.0.1", "::1", "fe80::1%eth0".
  [[nodiscard]] std::string text() const;
  [[nodiscard]] NLAddress withPort(std::uint16_t port) const;
  /// Whether both name the same machine, whatever the ports and scopes.
  [[nodiscard]] bool isSameHost(const NLAddress& other) const;
  /// Whether it stands for every address of this machine.
  [[nodiscard]] bool isAny() const;

 private:
  void p_set(in_addr address, std::uint16_t port);

  sockaddr_storage address_{};
};

}  // namespace corvane
