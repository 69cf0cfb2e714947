#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// Whether a line that is no entry is one of those that stand about entries: a total, a heading, a
/// summary. Sets `columns` where it says what follows. `first` where nothing has come before it.
[[nodiscard]] bool IsHeading(std::string_view line, bool first, ListingColumns& columns);

}  // namespace corvane
