#pragma once

#include <string_view>

#include "kit/Message.h"
#include "kit/Text.h"

namespace corvane {

/// What the user may hear; which sound file that is, the owner knows.
enum class Sound { LoginSucceeded, LoginFailed, Downloaded, Uploaded };

/// What every owner of a session offers it. Any thread may call; every call returns at once and
/// returns false once the owner is closing: the caller then stops.
class OwnerUi {
 public:
  virtual ~OwnerUi() = default;

  /// Hands the owner a message. Texts stand in it as Message::AddText puts them: 'FERR' (fatal,
  /// "error", perhaps "detail"), 'GERR' (warning, "warning"), 'LOST' (the connection is gone,
  /// "warning"), 'DWLD' ("FileName": download this row), 'ADDI' (an upload arrived), 'DONE' (a
  /// looper has carried out the request of the code "request", or has not; the listing of one that
  /// lists may still be arriving).
  virtual bool PostMessage(Message message) = 0;

  virtual bool PlaySound(Sound sound) = 0;

  /// What goes on, such as "Connecting to host.".
  virtual bool SetStatus(const Text& text) = 0;

  /// A line of the dialogue with the server, with its line feed, for those who keep a log.
  virtual bool AppendLog(std::string_view line) = 0;
};

}  // namespace corvane
