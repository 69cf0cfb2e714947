#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "remote/RemoteSession.h"

namespace corvane {

/// A moment that a server told to the second and in UTC, in seconds since 1970.
[[nodiscard]] inline std::optional<std::int64_t> ExactTime(const std::optional<RemoteTime>& time) {
  if (!time || !time->utc || time->precision != RemoteTime::Precision::Second) return std::nullopt;
  return time->seconds;
}

/// When a file was changed, as far as the server tells it exactly.
[[nodiscard]] inline std::optional<std::int64_t> AskTime(RemoteSession& session,
                                                         const std::string& path) {
  std::optional<RemoteTime> time;
  return session.ModifiedTime(path, time).IsDone() ? ExactTime(time) : std::nullopt;
}

}  // namespace corvane
