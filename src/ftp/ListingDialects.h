#pragma once

#include <chrono>
#include <string_view>

#include "remote/RemoteEntry.h"

namespace corvane {

/// The dialects of a listing's lines. Each reads one line, without its end, into `entry`, and
/// returns false where the line is not of its form. Times are taken as they stand, for a server
/// does not tell its zone; `now` says what year a line without one means.
///
/// The long format of `ls -l`.
[[nodiscard]] bool ReadUnixLine(std::string_view line, std::chrono::year_month_day now,
                                RemoteEntry& entry);
/// The format of `DIR`: "07-17-00  02:35PM  2048 name", with "<DIR>" in place of a size.
[[nodiscard]] bool ReadDosLine(std::string_view line, RemoteEntry& entry);

}  // namespace corvane
