// Any bytes become text that is safe to show, and stays so when it is shortened.
#include <cstdlib>

#include "util/Encodings.h"
#include "util/GetTruncatedString.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string shown = DisplayText(bytes);
  if (!IsUtf8(shown)) std::abort();
  for (const char c : shown)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) std::abort();
  const TextWidth width = [](std::string_view text) { return static_cast<float>(text.size()); };
  if (!IsUtf8(GetTruncatedString(shown, width, 20.0F, Truncation::Middle))) std::abort();
  return 0;
}
