#include "net/Tunnel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

#include "net/Stream.h"

namespace corvane {
namespace {

using namespace std::literals;

// What a proxy says, and then nothing more or the end.
class Proxy final : public Stream {
 public:
  Proxy(std::string says, bool hangsUp) : says_(std::move(says)), hangsUp_(hangsUp) {}

  std::size_t read(std::span<char> buffer) override {
    const std::size_t count = std::min(buffer.size(), says_.size());
    says_.copy(buffer.data(), count);
    says_.erase(0, count);
    return count;
  }
  void write(std::span<const char> bytes) override { heard.append(bytes.data(), bytes.size()); }
  bool wait(long /*milliseconds*/) override { return hangsUp_ || !says_.empty(); }
  void finish() override {}
  void abort() override {}
  [[nodiscard]] const std::string& Left() const { return says_; }

  std::string heard;

 private:
  std::string says_;
  bool hangsUp_;
};

// How opening a tunnel ends: "open", "stopped" or the message.
std::string Opened(const Tunnel& tunnel, Proxy& proxy, bool goOn = true) {
  try {
    return tunnel.open(proxy, 2121, 30, [&] { return goOn; }) ? "open" : "stopped";
  } catch (const TunnelFailure& failure) {
    EXPECT_EQ(failure.why.English(), failure.message);
    EXPECT_EQ(failure.portClosed,
              failure.message == "The server refuses the connection from the proxy."s);
    return failure.message;
  }
}

constexpr char kGreeting[] = "220 Hello\r\n";
const std::string kNoSocks = "What answers there is no SOCKS5 proxy.";
const std::string kNoHttp = "What answers there is no HTTP proxy.";
const std::string kNoUser = "The proxy wants a user name and a password.";
const std::string kWrongUser = "The proxy refuses the user name or the password.";
const std::string kNotReached = "The proxy cannot find or reach the server.";
const std::string kBarred = "The proxy does not let this connection through.";
const std::string kNotOffered = "The proxy does not make connections of this kind.";

TEST(Tunnel, SaysWhatTheProxyIsToKnow) {
  const std::string long300(300, 'x');
  const std::string tooLong = "A name or password is too long for the proxy.";
  const std::string unfit = "The server's name cannot be sent to the proxy.";
  // The server's host, what SOCKS sends in its place, and HTTP.
  const std::tuple<std::string, std::string, std::string> hosts[] = {
      {"ftp.example", "\3\13ftp.example", "ftp.example"},
      {"b\xC3\xBC"
       "cher.example",
       "\3\25xn--bcher-kva.example", "xn--bcher-kva.example"},
      {"10.0.0.1", "\1\12\0\0\1"s, "10.0.0.1"},
      {"::1", "\4" + std::string(15, '\0') + "\1", "[::1]"},
      {"fe80::2%eth0", "\4\xFE\x80" + std::string(13, '\0') + "\2", "[fe80::2]"},
      {long300, "", long300},
      {"a\r\nb", "", ""},
      {"", "", ""},
  };
  for (const std::string user : {"", "me"}) {
    const std::string login = user.empty() ? "" : "\1\2me\6secret";
    for (const auto& [host, socks, http] : hosts) {
      const Tunnel tunnel{Tunnel::Kind::socks5, user, "secret", host};
      Proxy proxy((user.empty() ? "\5\0"s : "\5\2\1\0"s) + "\5\0\0\1abcdpp"s + kGreeting, false);
      EXPECT_EQ(Opened(tunnel, proxy), !socks.empty() ? "open" : http.empty() ? unfit : tooLong);
      const std::string hello = user.empty() ? "\5\1\0"s : "\5\2\0\2"s;
      EXPECT_EQ(proxy.heard, socks.empty() ? "" : hello + login + "\5\1\0"s + socks + "\10\x49");
      if (!socks.empty()) EXPECT_EQ(proxy.Left(), kGreeting);

      const Tunnel other{Tunnel::Kind::http, user, "secret", host};
      Proxy web("HTTP/1.0 200 Go on\r\nVia: x\r\n\r\n"s + kGreeting, false);
      EXPECT_EQ(Opened(other, web), http.empty() ? unfit : "open");
      const std::string target = http + ":2121";
      const std::string basic = "Proxy-Authorization: Basic bWU6c2VjcmV0\r\n";
      EXPECT_EQ(web.heard, http.empty() ? ""
                                        : "CONNECT " + target + " HTTP/1.1\r\nHost: " + target +
                                              "\r\n" + (user.empty() ? "" : basic) + "\r\n");
      if (!http.empty()) EXPECT_EQ(web.Left(), kGreeting);
    }
  }
}

TEST(Tunnel, OpensOrSaysWhyNot) {
  const std::string in = "\5\0"s;
  const std::string silent = "The proxy does not answer.";
  const std::string closed = "The proxy has closed the connection.";
  const std::string odd = "The proxy refuses with the code 77.";
  const std::string status = "HTTP/1.1 ";
  const std::string end = "\r\n\r\n";
  constexpr auto socks = Tunnel::Kind::socks5;
  constexpr auto http = Tunnel::Kind::http;
  // The kind, whether a user is known, what the proxy says, and how that ends.
  const std::tuple<Tunnel::Kind, bool, std::string, std::string> rows[] = {
      {socks, false, in + "\5\0\0\3\4host12"s, "open"},
      {socks, false, in + "\5\0\0\4"s + std::string(18, 'x'), "open"},
      {socks, true, in + "\5\0\0\1abcd12"s, "open"},
      {socks, true, "\5\2\1\0\5\0\0\1abcd12"s, "open"},
      {socks, true, "\5\2\1\1", kWrongUser},
      {socks, true, "\5\xFF", kWrongUser},
      {socks, false, "\5\xFF", kNoUser},
      {socks, false, "\5\2", kNoSocks},
      {socks, false, "\4\0"s, kNoSocks},
      {socks, false, "HTTP/1.0 400 No\r\n\r\n", kNoSocks},
      {socks, false, in + "\5\1", "The proxy could not connect, and gives no reason."},
      {socks, false, in + "\5\2", kBarred},
      {socks, false, in + "\5\3", kNotReached},
      {socks, false, in + "\5\4", kNotReached},
      {socks, false, in + "\5\5", "The server refuses the connection from the proxy."},
      {socks, false, in + "\5\7", kNotOffered},
      {socks, false, in + "\5\x4D", odd},
      {socks, false, in + "\5\0\0\2"s, kNoSocks},
      {socks, false, in + "220", kNoSocks},
      {http, false, status + "200" + end, "open"},
      {http, false, "HTTP/1.0 299 Odd\n\n", "open"},
      {http, false, status + "100 Wait" + end + status + "200 OK" + end, "open"},
      {http, false, status + "407 Who?" + end, kNoUser},
      {http, true, status + "407 Who?" + end, kWrongUser},
      {http, true, status + "401 No" + end, kWrongUser},
      {http, false, status + "403 No" + end, kBarred},
      {http, false, status + "500 No" + end, kNotReached},
      {http, false, status + "504 Late" + end, kNotReached},
      {http, false, status + "405 No" + end, kNotOffered},
      {http, false, status + "418 Tea" + end, "The proxy refuses: 418 Tea"},
      {http, false, status + "302" + end, "The proxy refuses: 302"},
      {http, false, status + end, kNoHttp},
      {http, false, status + "20" + end, kNoHttp},
      {http, false, kGreeting, kNoHttp},
      {http, false, status + "200 OK\r\nA: " + std::string(9'000, 'a') + end, kNoHttp},
      {http, false, status + std::string(9'000, '2'), kNoHttp},
  };
  for (const auto& [kind, known, says, told] : rows) {
    Proxy proxy(says, false);
    const Tunnel tunnel{kind, known ? "me" : "", "secret", "ftp.example"};
    EXPECT_EQ(Opened(tunnel, proxy), told) << says;
    if (told != "open") continue;
    EXPECT_EQ(proxy.Left(), "");
    // Wherever the proxy falls silent or hangs up, that is told.
    for (std::size_t length = 0; length < says.size(); ++length) {
      Proxy mute(says.substr(0, length), false);
      EXPECT_EQ(Opened(tunnel, mute, length % 2 == 0), length % 2 == 0 ? silent : "stopped");
      Proxy gone(says.substr(0, length), true);
      EXPECT_EQ(Opened(tunnel, gone), closed);
    }
  }
}

}  // namespace
}  // namespace corvane
