#pragma once

#include <cstdint>
#include <string>

#include "kit/Text.h"
#include "remote/FileVersion.h"
#include "remote/Site.h"

namespace corvane {

/// A server's file of which a copy stands here while it is edited. A value; paths and names are raw
/// bytes.
struct EditedFile {
  enum class State : std::uint8_t {
    Fetching,
    Unchanged,  ///< the copy is as it came
    Changed,    ///< saved, and not sent yet
    Waiting,    ///< saved; it could not be sent for a reason that may pass
    Sending,
    Sent,
    Conflict,  ///< saved, and not sent because the server's file has changed too
    Failed,    ///< it could not be fetched or sent
  };

  std::int64_t id = 0;
  Site site{};            ///< the password is never kept on the disk
  std::string remote{};   ///< its path on the server
  std::string name{};     ///< of the copy
  FileVersion version{};  ///< what stood on the server when the copy was fetched or sent last
  std::string digest{};   ///< SHA-256 of the copy at that time, as bytes; empty before it is there
  std::int64_t sentAt = 0;  ///< when it was sent last, in seconds since 1970; 0 for never
  bool edits = false;       ///< opened in the text editor, else in its own program
  bool inPlace = false;     ///< sent by writing into what stands there, which may be a link
  State state = State::Fetching;
  Text why{};           ///< why it waits or failed
  FileVersion found{};  ///< what stands on the server in a conflict
  FileVersion saved{};  ///< what was to be sent then: its size, and when it was saved

  /// Whether the copy holds what the server has not got.
  [[nodiscard]] bool IsUnsent() const {
    return !digest.empty() && state != State::Fetching && state != State::Unchanged &&
           state != State::Sent;
  }
};

}  // namespace corvane
