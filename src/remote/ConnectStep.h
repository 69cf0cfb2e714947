#pragma once

#include <cstdint>

#include "kit/Text.h"

namespace corvane {

/// A step on the way to a connection, for a page that lists them. Each is told anew whenever its
/// state changes. A value.
struct ConnectStep {
  /// In the order in which they are taken; a step that is not needed is not told of.
  enum class Kind : std::uint8_t { Address, Port, Encryption, Login, Directory };
  enum class State : std::uint8_t { Waiting, Running, Done };

  Kind kind = Kind::Address;
  State state = State::Waiting;
  Text text{};  ///< "Port 21 answers."
};

}  // namespace corvane
