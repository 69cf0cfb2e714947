#pragma once

#include <string>
#include <string_view>

namespace corvane {

class NLEndpoint;

/// What every failing call of the networking layer throws, by value. Texts are cut at 254 bytes.
struct NLException {
  char file[255];        ///< source file of the throwing code
  int line;              ///< source line of the throw
  char function[255];    ///< the operation, e.g. "NLEndpoint::connect()"
  char message[255];     ///< what failed and why, e.g. "::connect() failed: Connection refused"
  NLEndpoint* endpoint;  ///< whose call failed; null when no endpoint took part. Not owned.

  NLException(std::string_view functionLabel, std::string_view text, NLEndpoint* failed = nullptr,
              const char* sourceFile = __builtin_FILE(), int sourceLine = __builtin_LINE());

  /// The report form, several lines long.
  [[nodiscard]] std::string Text() const;
};

}  // namespace corvane
