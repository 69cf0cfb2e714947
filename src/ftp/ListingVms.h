#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// The format of OpenVMS: "NAME.TXT;4  2/3  15-JAN-2001 12:34:56  [GROUP,OWNER]  (RWED,RWED,RE,)".
/// After a long name the line goes on in the next. A file is named with its version, a directory
/// without its ".DIR;1". Sizes are counted in blocks, and thus not told.
[[nodiscard]] bool ReadVmsLine(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
