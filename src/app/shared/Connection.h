#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// Where and as whom to connect. Texts are raw bytes.
struct Connection {
  std::string host;
  std::string user;
  std::string pass;
  std::string path;
  std::uint16_t port = 21;
  bool passive = false;
};

}  // namespace corvane
