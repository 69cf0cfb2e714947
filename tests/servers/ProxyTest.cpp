#include <gtest/gtest.h>

#include <string>

#include "ftp/MFtp.h"
#include "ftp/Session.h"
#include "net/NLEndpoint.h"
#include "support/RealServers.h"

namespace corvane {
namespace {

// A listing, a download and an upload through proxies of the distribution: active connections asked
// for and plain, or passive, encrypted and over IPv6.
TEST(ProxyTest, CarriesASessionOrSaysWhyNot) {
  NLEndpoint unheard(NLEndpoint::stream);
  unheard.bind(NLAddress("127.0.0.1", 0));
  for (const std::string name : {"microsocks", "tinyproxy"}) {
    const bool socks = name == "microsocks";
    for (const bool login : {false, true}) {
      SCOPED_TRACE(name + (login ? " with a login" : ""));
      const RealProxy real(name, login);
      const Proxy proxy{"localhost", real.port, socks ? Proxy::Kind::Socks5 : Proxy::Kind::Http,
                        login ? real.user : "", login ? real.password : ""};
      for (const char* host : {"127.0.0.1", "::1"}) {
        SCOPED_TRACE(host);
        Session s(false, NLAddress(host, 0));
        s.server.Tree().AddFile("/f", std::string(300'000, 'f'));
        Site site = s.server.Where(std::string(host) == "::1");
        site.proxy = proxy;
        if (site.passive) {
          s.server.Encrypt({.host = "somebody.example"});
          site.security = Security::Required;
          s.ui->answer = UserQuestion::Answer::Once;
        }
        MFtp engine(site, s.ui);
        ASSERT_EQ(Told(engine.Connect()), "Done") << s.server.Dialogue();
        EXPECT_EQ(Told(engine.List("/", s)), "Done") << s.server.Dialogue();
        EXPECT_EQ(s.names, "f|");
        EXPECT_EQ(Told(s.Get("/f", 0, &engine)), "Done");
        EXPECT_TRUE(s.raw == std::string(300'000, 'f'));
        std::unique_ptr<RemoteFile> file;
        ASSERT_EQ(Told(engine.OpenForWriting("/g", 0, file)), "Done");
        EXPECT_EQ(Told(file->Write(s.raw)), "Done");
        EXPECT_EQ(Told(file->Finish()), "Done");
        EXPECT_TRUE(s.server.Tree().File("/g") == s.raw);
        EXPECT_EQ(s.ui->Seen().protections.back().encrypted, site.passive);
        EXPECT_EQ(s.Sent("PORT") + s.Sent("EPRT") + s.Sent("PASV"), "");
        const bool told =
            s.ui->Seen().log.find("Through the proxy all data connections") != std::string::npos;
        EXPECT_EQ(told, !site.passive);
      }
      // What keeps it from coming about: the server, the user, the proxy's kind.
      const std::string wants = "The proxy wants a user name and a password.";
      const std::string refuses = "The proxy refuses the user name or the password.";
      const std::string unreached = socks ? "The server refuses the connection from the proxy."
                                          : "The proxy cannot find or reach the server.";
      const std::string unknown = socks ? "The proxy could not connect, and gives no reason."
                                        : "The proxy cannot find or reach the server.";
      const auto other = socks ? Proxy::Kind::Http : Proxy::Kind::Socks5;
      // It waits for a line to end, which SOCKS has none of.
      const std::string noSuch =
          socks ? "What answers there is no HTTP proxy." : "The proxy does not answer.";
      const std::tuple<std::string, Proxy, std::string> rows[] = {
          {"127.0.0.1", proxy, unreached},
          {"nowhere.invalid", proxy, unknown},
          {"127.0.0.1", {proxy.host, proxy.port, proxy.kind}, login ? wants : unreached},
          {"127.0.0.1",
           {proxy.host, proxy.port, proxy.kind, "tester", "wrong"},
           login ? refuses : unreached},
          {"127.0.0.1", {proxy.host, proxy.port, other}, noSuch},
      };
      for (const auto& [host, way, why] : rows) {
        Session s;
        MFtp engine({.host = host, .port = unheard.localAddress().port(), .proxy = way}, s.ui);
        if (why == noSuch) engine.SetWaits(Waits::All(500));
        EXPECT_EQ(Told(engine.Connect()), "Lost: Connection to:  " + host + " FAILED!\n\n" + why);
      }
    }
  }
}

}  // namespace
}  // namespace corvane
