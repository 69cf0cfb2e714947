#include "ftp/FtpCommand.h"

#include <string>
#include <utility>

#include "ftp/FtpControl.h"
#include "ftp/FtpFailure.h"
#include "ftp/ReplyTable.h"

namespace corvane {

FtpCommand::FtpCommand(FtpControl& control, std::string_view command, std::string_view logged,
                       Order order, Effect effect)
    : control_(control) {
  control.CheckReady(command);
  if (order == Order::InTurn) control.ReadUnread();
  const bool ahead = !control.underWay_.empty();
  control.underWay_.push_back(
      {this, false, ahead, std::string(command.substr(0, command.find(' ')))});
  try {
    control.Write(command, logged, order == Order::Ahead);
  } catch (const FtpFailure&) {
    LetGo();
    throw;
  }
  control.underWay_.back().changes = effect == Effect::Change;
}

FtpCommand::~FtpCommand() {
  LetGo();
}

void FtpCommand::LetGo() {
  for (FtpControl::UnderWay& one : control_.underWay_)
    if (one.command == this) one.command = nullptr;
}

// What comes before belongs to commands that were let go of.
Reply FtpCommand::Next() {
  const auto& underWay = control_.underWay_;
  while (!underWay.empty() && underWay.front().command != this) (void)control_.ReadResponse();
  if (underWay.size() != 1 || underWay.front().ahead) return control_.ReadResponse();
  const FtpControl::UnderWay asked = underWay.front();
  Reply reply = control_.ReadResponse();
  if (control_.IsLost() || MayBeReply(asked.verb, reply.code)) return reply;
  return control_.Realign(*this, asked, std::move(reply));
}

void FtpCommand::Hurry() {
  while (!complete_ && control_.TryRead()) continue;
}

}  // namespace corvane
