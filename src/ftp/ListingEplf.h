#pragma once

#include "ftp/ListingLine.h"

namespace corvane {

/// Easily parsed LIST format: "+i8388621.29609,m824255902,/,<tab>name".
[[nodiscard]] bool ReadEplfLine(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
