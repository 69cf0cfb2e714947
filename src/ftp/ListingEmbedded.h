#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// Formats of routers and controllers: "512  JAN-02-1999  10:11:12  name  <DIR>" (VxWorks) and
/// "name  512  06/03/04  Thur.  10:20:03".
[[nodiscard]] bool ReadEmbeddedLine(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
