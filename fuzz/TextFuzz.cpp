// Any bytes become text that is safe to show, and any URL is either read or refused.
#include <cstdlib>

#include "sites/ParseUrl.h"
#include "util/Encodings.h"
#include "util/GetTruncatedString.h"
#include "util/Url.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string shown = DisplayText(bytes);
  if (!IsUtf8(shown)) std::abort();
  for (const char c : shown)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) std::abort();
  (void)ParseUrl(std::string("Alabel*ftp://").append(bytes), false);
  if (const auto url = Url::Read(std::string("ftp://").append(bytes)); url.has_value()) {
    const Url shared{.host = url->host, .port = url->port.value_or(21), .path = url->path};
    const auto again = Url::Read(shared.Written());
    if (!again || again->host != url->host || again->path != url->path) std::abort();
  }
  const TextWidth width = [](std::string_view text) { return static_cast<float>(text.size()); };
  if (!IsUtf8(GetTruncatedString(shown, width, 20.0F, Truncation::Middle))) std::abort();
  return 0;
}
