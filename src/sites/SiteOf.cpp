#include "sites/SiteOf.h"

#include <arpa/inet.h>

#include "sites/SecurityOf.h"

namespace corvane {
namespace {

Security SecurityOf(Url::Scheme scheme) {
  switch (scheme) {
    case Url::Scheme::Ftpes: return Security::Required;
    case Url::Scheme::Ftps: return Security::Implicit;
    case Url::Scheme::Ftp: break;
  }
  return SecurityOf(ProcessSettings::Get());
}

Url::Scheme SchemeOf(Security security) {
  switch (security) {
    case Security::Required: return Url::Scheme::Ftpes;
    case Security::Implicit: return Url::Scheme::Ftps;
    case Security::Automatic:
    case Security::Plain: break;
  }
  return Url::Scheme::Ftp;
}

// Nobody listens between this machine and itself.
bool IsThisMachine(const std::string& host) {
  constexpr in_addr_t kLoopback = 127;
  in_addr quad{};
  if (::inet_pton(AF_INET, host.c_str(), &quad) == 1) return ntohl(quad.s_addr) >> 24 == kLoopback;
  return host == "localhost" || host == "::1";
}

}  // namespace

std::optional<Security> SecurityFrom(std::int64_t number) {
  if (number < 0 || number > static_cast<std::int64_t>(Security::Plain)) return {};
  return static_cast<Security>(number);
}

Site SiteOf(const Url& url) {
  const Security security = SecurityOf(url.scheme);
  return {.host = url.host,
          .port = url.port.value_or(UsualPort(security)),
          .user = url.user,
          .password = url.password,
          .path = url.path,
          .security = security};
}

bool WarnsOfPlain(const Site& site, const SettingsValues& settings) {
  return settings.askBeforePlain && (site.proxy || !IsThisMachine(site.host));
}

Url UrlOf(const Site& site, const std::string& path) {
  return {.host = site.host, .port = site.port, .path = path, .scheme = SchemeOf(site.security)};
}

}  // namespace corvane
