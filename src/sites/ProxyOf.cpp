#include "sites/ProxyOf.h"

#include "util/PortFrom.h"

namespace corvane {

std::optional<Proxy> ProxyOf(const SettingsValues& settings) {
  if (!settings.useProxy) return {};
  return Proxy{settings.proxyAddress, PortFrom(settings.proxyPort)};
}

}  // namespace corvane
