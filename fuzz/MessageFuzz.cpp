// Bytes that pass for a message are exactly what that message flattens to.
#include <cstdlib>

#include "kit/Message.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (const auto message = Message::Unflatten(bytes))
    if (Message::Unflatten(message->Flatten()) != message) std::abort();
  return 0;
}
