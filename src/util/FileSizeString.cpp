#include "util/FileSizeString.h"

namespace corvane {

std::string FileSizeString(std::string_view digits) {
  const auto whole = [digits](std::size_t count, std::string_view unit) {
    return std::string(digits.substr(0, count)).append(unit);
  };
  const auto tenths = [digits](std::string_view unit) {
    return std::string{digits[0], '.', digits[1]}.append(unit);
  };
  switch (digits.size()) {
    case 0:
    case 1: return whole(1, "   B");
    case 2: return whole(2, "  B");
    case 3: return whole(3, " B");
    case 4: return tenths(" KB");
    case 5: return whole(2, "  KB");
    case 6: return whole(3, " KB");
    case 7: return tenths(" MB");
    case 8: return whole(2, "  MB");
    default: return whole(3, "  MB");
  }
}

}  // namespace corvane
