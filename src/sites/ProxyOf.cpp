#include "sites/ProxyOf.h"

#include "util/PortFrom.h"

namespace corvane {

namespace {

Proxy::Kind KindOf(std::int32_t stored) {
  for (const Proxy::Kind kind : {Proxy::Kind::Socks5, Proxy::Kind::Http})
    if (stored == static_cast<std::int32_t>(kind)) return kind;
  return Proxy::Kind::Ftp;
}

}  // namespace

std::optional<Proxy> ProxyOf(const SettingsValues& settings) {
  if (!settings.useProxy) return {};
  return Proxy{settings.proxyAddress, PortFrom(settings.proxyPort), KindOf(settings.proxyKind),
               settings.proxyUser,    settings.proxyPassword,       settings.proxyKept};
}

}  // namespace corvane
