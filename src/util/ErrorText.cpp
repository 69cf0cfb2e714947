#include "util/ErrorText.h"

#include <cstring>

namespace corvane {

std::string ErrorText(int number) {
  char buffer[256] = "";
  return ::strerror_r(number, buffer, sizeof buffer);
}

}  // namespace corvane
