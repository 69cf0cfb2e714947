#include "ftp/SiteWay.h"

namespace corvane {

const Proxy* ProxyInFront(const Site& site) {
  return site.proxy && !site.proxy->host.empty() ? &*site.proxy : nullptr;
}

std::optional<Tunnel> TunnelOf(const Site& site) {
  if (!site.proxy || site.proxy->kind == Proxy::Kind::Ftp) return std::nullopt;
  const bool socks = site.proxy->kind == Proxy::Kind::Socks5;
  return Tunnel{socks ? Tunnel::Kind::socks5 : Tunnel::Kind::http, site.proxy->user,
                site.proxy->password, site.host};
}

std::pair<const std::string&, std::uint16_t> PeerOf(const Site& site) {
  const Proxy* const proxy = ProxyInFront(site);
  const bool standsIn = proxy != nullptr && proxy->kind == Proxy::Kind::Ftp;
  return standsIn ? std::pair<const std::string&, std::uint16_t>(proxy->host, proxy->port)
                  : std::pair<const std::string&, std::uint16_t>(site.host, site.port);
}

std::string LoginName(const Site& site) {
  const bool named = site.proxy && !TunnelOf(site);
  return site.user + (named ? "@" + site.host : "");
}

}  // namespace corvane
