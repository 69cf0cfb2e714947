#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "kit/Text.h"

namespace corvane {

/// What became of an operation on a server. Whoever retries, skips, stops or asks decides by the
/// kind alone. A value.
struct [[nodiscard]] Outcome {
  enum class Kind {
    Done,
    Refused,     ///< the server said no, and the connection stays
    Busy,        ///< not now, later it may do: 425, 426, 450 and too many connections
    LocalFull,   ///< no room on this machine: where one file does not fit none after it does
    LocalError,  ///< this machine could not do its part
    Lost,        ///< the connection is gone
    Cancelled,
  };

  /// What kept a connection from coming about, or a file from being replaced.
  enum class Trouble : std::int32_t {
    Other = 0,
    UnknownName = 1,   ///< the server's name has no address
    NoAnswer = 2,      ///< nothing comes from there
    RefusedPort = 3,   ///< the machine is there, and nothing serves the port
    RefusedLogin = 4,  ///< user or password
    NoEncryption = 5,  ///< the server does not encrypt, or not as it should
    Certificate = 6,   ///< the user does not trust the server's certificate
    TooMany = 7,       ///< the server takes no more connections at the moment
    Changed = 8,       ///< of a file: what stands on the server is not what was to be replaced
  };

  Kind kind = Kind::Done;
  int code = 0;          ///< the reply's code that decided; 0 where none did
  Text text{};           ///< why not; with Done, what the user should know all the same
  std::string server{};  ///< the reply that decided, as it came: "530 Login incorrect."
  Trouble trouble = Trouble::Other;

  [[nodiscard]] bool IsDone() const { return kind == Kind::Done; }

  [[nodiscard]] static Outcome Cancelled() { return {Kind::Cancelled, 0, Text("Cancelled.")}; }
  [[nodiscard]] static Outcome LocalError(Text why) {
    return {Kind::LocalError, 0, std::move(why)};
  }
};

}  // namespace corvane
