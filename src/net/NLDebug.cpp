#include "net/NLDebug.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace corvane {

std::atomic<bool> NLDebug::m_on = false;

void NLDebug::dump(const char* data, unsigned long length, const char* title) {
  if (!m_on) return;
  constexpr unsigned long kColumns = 16;
  // One write at the end, so that dumps of several threads do not mix.
  std::string out =
      std::string("----------\n") + title + "\n(dumping " + std::to_string(length) + " bytes)\n";
  std::string column;
  for (unsigned long i = 0; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(data[i]);
    char hex[4] = "";
    std::snprintf(hex, sizeof hex, "%02x ", static_cast<unsigned>(byte));
    out += hex;
    column += std::isprint(byte) != 0 ? data[i] : '.';
    if ((i + 1) % kColumns == 0) {
      out += "  |  " + column + "\n";
      column.clear();
    }
  }
  // A last line of fifteen bytes stays without padding and text column.
  if ((length + 1) % kColumns != 0) {
    for (unsigned long i = length; i % kColumns != 0; ++i) out += "   ";
    out += "  |  " + column;
  }
  out += "\n----------\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  std::fflush(stdout);
}

void NLDebug::print(const char* text) {
  if (!m_on) return;
  std::fprintf(stderr, "debug: %s\n", text != nullptr ? text : "");
}

void NLDebug::switchOnFromEnvironment() {
  const char* value = std::getenv("CORVANE_NET_DEBUG");
  const std::string_view wish = value != nullptr ? value : "";
  m_on = !wish.empty() && wish != "0";
}

}  // namespace corvane
