#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// The long format of `ls -l` and what resembles it: any column before the date may be missing, or
/// hold blanks, and dates come in every form that TimeAt knows.
[[nodiscard]] bool ReadUnixLine(ListingLine& line, RemoteEntry& entry);
/// A line that begins as one of these does and in which no date is found: an entry whose name
/// cannot be told from the columns before it.
[[nodiscard]] bool ReadUnclearLine(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
