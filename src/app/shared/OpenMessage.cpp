#include "app/shared/OpenMessage.h"

#include "app/shared/Style.h"

#include <cstdint>

namespace corvane {

Message OpenMessage(const Site& site) {
  Message message("OPNC"_what);
  const auto add = [&message](const char* name, const std::string& text) {
    if (!text.empty()) message.AddString(name, text);
  };
  add("host", site.host);
  add("user", site.user);
  add("pass", site.password);
  add("path", site.path);
  message.AddBool("passive", site.passive);
  message.AddInt16("port", static_cast<std::int16_t>(site.port));
  return message;
}

std::optional<Site> SiteIn(const Message& message) {
  Site site;
  site.host = message.FindString("host").value_or("");
  site.user = message.FindString("user").value_or("anonymous");
  site.password = message.FindString("pass").value_or("guest@a.b");
  site.path = message.FindString("path").value_or("");
  site.port = static_cast<std::uint16_t>(message.FindInt16("port").value_or(21));
  site.passive = message.FindBool("passive").value_or(Style::InForce().PassiveAtFirst());
  if (site.host.empty() || site.port == 0) return {};
  return site;
}

}  // namespace corvane
