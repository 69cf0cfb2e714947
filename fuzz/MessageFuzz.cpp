// Bytes that pass for a message or a text are exactly what that one flattens to.
#include <cstdint>
#include <cstdlib>

#include "kit/Message.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (const auto message = Message::Unflatten(bytes))
    if (Message::Unflatten(message->Flatten()) != message) std::abort();
  if (const auto text = Text::Unflatten(bytes))
    if (text->Flatten() != bytes) std::abort();
  return 0;
}
