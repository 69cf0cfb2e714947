#pragma once

#include "remote/ServerTrust.h"
#include "remote/Site.h"

namespace corvane {

/// Whether the user trusts this certificate: once trusted it counts as long as nothing more is
/// wrong with it.
[[nodiscard]] inline bool IsTrusted(const Certificate& certificate, const KnownServer& server) {
  if (certificate.problems == 0) return true;
  return server.trusted && server.trusted->certificate.sha256 == certificate.sha256 &&
         (certificate.problems & ~server.trusted->certificate.problems) == 0;
}

/// Whether the user is asked before a server without encryption gets the login. One that was
/// encrypted before and is not any more may be somebody else.
[[nodiscard]] inline bool AsksBeforePlain(const Site& site, const KnownServer& server) {
  const bool anonymous = site.user == "anonymous" || site.user == "ftp";
  return server.wasEncrypted || (site.warnsOfPlain && !anonymous && !server.mayBePlain);
}

}  // namespace corvane
