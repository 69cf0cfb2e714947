#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// The formats of z/OS: data sets "VOL001 3390  2007/01/05  1  1  VB  255 27998  PS  A.NAME", and
/// under their headings the members of a library. Sizes are counted in records and tracks, and thus
/// not told.
[[nodiscard]] bool ReadMvsLine(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
