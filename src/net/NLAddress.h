#pragma once

#include <netinet/in.h>

#include <cstdint>

namespace corvane {

/// One IPv4 socket address. A value; every setter replaces the whole of it.
class NLAddress {
 public:
  /// Well-known addresses, stored as they stand.
  enum e_addr : std::uint32_t { any = 0 };

  NLAddress(const char* host = nullptr, std::uint16_t port = 0) { set(host, port); }
  NLAddress(e_addr address, int port) { set(address, port); }
  NLAddress(in_addr address, int port) { set(address, port); }
  explicit NLAddress(const sockaddr_in& address) { set(address); }

  /// Takes a dotted quad as it is and asks the resolver for everything else, 0.0.0.0 and
  /// 255.255.255.255 included; blocks while it does. Re-entrant. Null is the empty address. Throws
  /// NLException, leaving the address as it was, when the name cannot be resolved.
  void set(const char* host, std::uint16_t port);
  void set(e_addr address, int port);
  void set(in_addr address, int port);
  void set(const sockaddr_in& address);

  void get(sockaddr_in& out) const;
  /// `port`, when not null, receives the port in host order.
  void get(in_addr& out, std::uint16_t* port) const;
  /// `text`, when not null, receives the dotted quad; at least 16 bytes.
  void get(char* text, std::uint16_t* port) const;

 private:
  void p_set(in_addr address, std::uint16_t port);

  sockaddr_in address_{};
};

}  // namespace corvane
