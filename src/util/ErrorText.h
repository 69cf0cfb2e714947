#pragma once

#include <string>

namespace corvane {

/// The system's words for an error number (errno). Any thread.
[[nodiscard]] std::string ErrorText(int number);

}  // namespace corvane
