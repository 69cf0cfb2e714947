#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// The format of `DIR`, which IIS and its like speak: "07-17-00  02:35PM  2048 name", with "<DIR>"
/// in place of a size.
[[nodiscard]] bool ReadDosLine(ListingLine& line, RemoteEntry& entry);
/// That of OS/2: "2048  A  07-17-00  14:35  name", with "DIR" among the attributes.
[[nodiscard]] bool ReadOs2Line(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
