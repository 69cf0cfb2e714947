#include "app/shared/OpenMessage.h"

#include <algorithm>
#include <cstdint>

#include "app/shared/Style.h"
#include "settings/ProcessSettings.h"
#include "sites/SecurityOf.h"
#include "sites/SiteOf.h"

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
  message.AddInt32("security", static_cast<std::int32_t>(site.security));
  add("encoding", site.encoding);
  add("certificate", site.clientCertificate);
  if (site.connections > 0) message.AddInt32("connections", site.connections);
  if (site.asksPassword) message.AddBool("asks", true);
  if (site.keptPassword) message.AddBool("kept", true);
  return message;
}

Message OpenMessage(const Url& url) {
  Message message = OpenMessage(SiteOf(url));
  if (url.scheme == Url::Scheme::Ftp) message.RemoveName("security");
  if (!url.port.has_value()) message.RemoveName("port");
  return message;
}

std::optional<Site> SiteIn(const Message& message) {
  const auto text = [&message](const char* name, const char* otherwise = "") {
    return message.FindString(name).value_or(otherwise);
  };
  Site site;
  site.host = text("host");
  site.user = text("user", "anonymous");
  site.path = text("path");
  site.security = SecurityFrom(message.FindInt32("security").value_or(-1))
                      .value_or(SecurityOf(ProcessSettings::Get()));
  const auto port = message.FindInt16("port");
  site.port = port ? static_cast<std::uint16_t>(*port) : UsualPort(site.security);
  site.passive = message.FindBool("passive").value_or(Style::InForce().PassiveAtFirst());
  site.encoding = text("encoding");
  site.clientCertificate = text("certificate");
  site.connections =
      std::clamp(message.FindInt32("connections").value_or(0), 0, Site::kMostConnections);
  site.asksPassword = message.FindBool("asks").value_or(false);
  site.keptPassword = message.FindBool("kept").value_or(false);
  site.password = text("pass", site.asksPassword || site.keptPassword ? "" : "guest@a.b");
  if (site.host.empty() || site.port == 0) return {};
  return site;
}

}  // namespace corvane
