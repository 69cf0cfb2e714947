#pragma once

#include <memory>
#include <string_view>

#include "kit/Message.h"
#include "kit/Text.h"
#include "remote/ConnectStep.h"
#include "remote/Protection.h"
#include "remote/UserQuestion.h"

namespace corvane {

/// What the user may hear; which sound file that is, the owner knows.
enum class Sound { LoginSucceeded, LoginFailed, Downloaded, Uploaded };

/// What every owner of a session offers it. Any thread may call; every call returns at once and
/// returns false once the owner is closing: the caller then stops.
class OwnerUi {
 public:
  virtual ~OwnerUi() = default;

  /// Hands the owner a message. Texts stand in it as Message::AddText puts them: 'FERR' (fatal:
  /// "error", "kind" as Outcome::Trouble, "advice" and the "server"'s own words where there are
  /// any), 'GERR' (warning, "warning", and "path" where that cannot be
  /// entered), 'LOST' (the connection is gone: "warning", the "reason" alone, and "login" where a
  /// login anew failed), 'DWLD' ("FileName": download this row), 'ADDI' (an upload arrived), 'DONE'
  /// (a looper has carried out the request of the code "request", or has not, as where the user
  /// has "stopped" it; the listing of one that lists may still be arriving).
  /// Also 'VRSN' (which state of the file "path" stands on the server, see VersionIn; "changed":
  /// another one than was to be replaced), 'CAPS' ("copy": the server can duplicate; "times": it
  /// may set times) and 'FREE' ("bytes" that may still be stored).
  virtual bool PostMessage(Message message) = 0;

  virtual bool PlaySound(Sound sound) = 0;

  /// What goes on, such as "Connecting to host.".
  virtual bool SetStatus(const Text& text) = 0;

  /// How far connecting has come; for those who show that.
  virtual bool ShowStep(const ConnectStep& /*step*/) { return true; }

  /// How the connection is protected, as soon as that is known on each connection.
  virtual bool ShowProtection(const Protection& /*protection*/) { return true; }

  /// Puts a question to the user; the answer is given to it. Who has nobody to ask says No at once.
  virtual bool Ask(const std::shared_ptr<UserQuestion>& question) {
    question->Give(UserQuestion::Answer::No);
    return true;
  }

  /// A line of the dialogue with the server, with its line feed, for those who keep a log.
  virtual bool AppendLog(std::string_view line) = 0;
};

}  // namespace corvane
