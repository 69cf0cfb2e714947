#pragma once

#include <string>
#include <vector>

#include "ftp/ReplyReader.h"

namespace corvane {

class FtpControl;
struct Habits;

/// Whether a server refuses so for good, and not because the command came at a bad moment.
[[nodiscard]] bool IsPlainRefusal(int code);

/// Asks by these commands at once where the server is known to take commands ahead or, with
/// `mayTry`, where that is not known. True with all the replies in their order. False where that is
/// not tried; and where a reply stays away or does not fit, which ends asking ahead: only the first
/// reply, if there is one, is then known to be to its question. The thread of the session; throws
/// FtpFailure.
[[nodiscard]] bool TryTogether(FtpControl& control, Habits& habits,
                               const std::vector<std::string>& questions, bool mayTry,
                               std::vector<Reply>& replies);
/// The same with questions that can be asked twice: where that brings no replies they are asked one
/// by one.
[[nodiscard]] std::vector<Reply> AskTogether(FtpControl& control, Habits& habits,
                                             const std::vector<std::string>& questions,
                                             bool mayTry);

}  // namespace corvane
