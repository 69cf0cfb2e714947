#include "app/shared/OpenMessage.h"

#include <cstdint>
#include <cstdlib>
#include <limits>

namespace corvane {

std::optional<Message> OpenMessage(const Shortcut& shortcut) {
  const long long port = std::strtoll(shortcut.port.c_str(), nullptr, 10);
  if (port < 0 || port > std::numeric_limits<std::uint16_t>::max()) return {};
  Message message("OPNC"_what);
  message.AddString("host", shortcut.host);
  message.AddString("user", shortcut.user);
  message.AddString("pass", shortcut.pass);
  message.AddString("path", shortcut.path);
  message.AddBool("passive", shortcut.passive);
  message.AddInt16("port", static_cast<std::int16_t>(port));
  return message;
}

}  // namespace corvane
