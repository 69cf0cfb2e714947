#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// The format of IBM i: "QSYS  77824 02/23/00 15:09:55 *DIR  name/", and "QSYS  *MEM  FILE/MEMBER".
[[nodiscard]] bool ReadIbmILine(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
