#pragma once

#include <cstdint>
#include <string_view>

#include "ftp/ReplyReader.h"

namespace corvane {

class FtpControl;

/// One command and the replies that belong to it: a first one, and a second where the first is
/// 1yz. One that is let go of with a reply unread leaves that to the control connection. Where
/// several are under way their replies are taken in the order in which they were sent.
class FtpCommand {
 public:
  enum class Order : std::uint8_t {
    InTurn,  ///< once all commands before it have their replies
    Ahead,   ///< at once
  };
  /// Whether a command changes what the server holds.
  enum class Effect : std::uint8_t { None, Change };

  /// Sends the command; the log gets `logged` where that is not empty.
  FtpCommand(FtpControl& control, std::string_view command, std::string_view logged = {},
             Order order = Order::InTurn, Effect effect = Effect::None);
  ~FtpCommand();
  FtpCommand(const FtpCommand&) = delete;
  FtpCommand& operator=(const FtpCommand&) = delete;

  /// The next of its replies.
  Reply Next();
  /// Whether its last reply was read.
  [[nodiscard]] bool IsComplete() const { return complete_; }
  /// Reads what is left as far as it comes at once.
  void Hurry();

 private:
  friend class FtpControl;

  void LetGo();

  FtpControl& control_;
  bool complete_ = false;
};

}  // namespace corvane
