#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// The format of NetWare: "d [R----F--] supervisor  512  Jan 16 18:53  name".
[[nodiscard]] bool ReadNetwareLine(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
