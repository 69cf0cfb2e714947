#pragma once

#include <string_view>

namespace corvane {

/// What stands for the server's greeting among commands.
inline constexpr std::string_view kGreeting = "greeting";

/// Whether a reply with that code may be to this command (RFC 959, 5.4; RFC 2228, 2389, 2428, 3659,
/// 4217). A code that RFCs give to other commands is none to this one. One that they give to nobody
/// may be to any command of which nothing is believed for its code alone; refusals may be to all.
[[nodiscard]] bool MayBeReply(std::string_view command, int code);

}  // namespace corvane
