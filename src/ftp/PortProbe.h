#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "net/NLAddress.h"
#include "net/Tunnel.h"

namespace corvane {

class NLEndpoint;

/// Finds out what is behind a port that is not as it should be, on connections of its own, of which
/// it gives away nothing but that somebody asks. One thread; `goOn` ends the waits.
class PortProbe {
 public:
  enum class Behind : std::uint8_t { Closed, Silent, Mute, Ftp, Ssh, Web, Tls, Strange };

  /// `addresses` are the server's, or those of the proxy that the tunnel leads through.
  PortProbe(std::vector<NLAddress> addresses, std::optional<Tunnel> tunnel,
            std::function<bool()> goOn);

  /// What is behind a port; waits `patience` milliseconds for each thing that it tries.
  [[nodiscard]] Behind Look(std::uint16_t port, const std::string& host, long patience) const;
  /// What speaks unasked; Mute where nothing does.
  [[nodiscard]] Behind Listen(std::uint16_t port, long patience) const;
  /// Whether the port takes connections.
  [[nodiscard]] bool IsOpen(std::uint16_t port, long patience) const;

  /// What a first line tells of the service.
  [[nodiscard]] static Behind Service(const std::string& line);

 private:
  [[nodiscard]] bool Connect(NLEndpoint& endpoint, std::uint16_t port, long patience) const;
  [[nodiscard]] bool Encrypts(std::uint16_t port, const std::string& host, long patience) const;
  [[nodiscard]] bool SpeaksHttp(std::uint16_t port, long patience) const;

  std::vector<NLAddress> addresses_;
  std::optional<Tunnel> tunnel_;
  std::function<bool()> goOn_;
};

}  // namespace corvane
