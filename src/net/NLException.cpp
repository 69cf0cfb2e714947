#include "net/NLException.h"

#include <cstdio>
#include <cstring>

namespace corvane {
namespace {

template <std::size_t Size>
void Fill(char (&field)[Size], std::string_view text) {
  std::memset(field, 0, Size);
  text.copy(field, Size - 1);
}

constexpr char kReport[] =
    "......\nNetworking Library Exception\n%s\n( File \"%s\"; Line %d) : %s\n......\n";

}  // namespace

NLException::NLException(std::string_view functionLabel, std::string_view text, NLEndpoint* failed,
                         const char* sourceFile, int sourceLine)
    : line(sourceLine), endpoint(failed) {
  const std::string_view path = sourceFile;
  Fill(file, path.substr(path.rfind('/') + 1));
  Fill(function, functionLabel);
  Fill(message, text);
}

std::string NLException::Text() const {
  char report[sizeof file + sizeof function + sizeof message + sizeof kReport + 16];
  std::snprintf(report, sizeof report, kReport, function, file, line, message);
  return report;
}

}  // namespace corvane
