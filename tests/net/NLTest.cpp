#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <fstream>
#include <functional>
#include <future>
#include <string>
#include <vector>

#include "net/HostName.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"
#include "net/NLLookup.h"
#include "net/NLPacket.h"
#include "support/FullPort.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using Work = std::function<void()>;

const NLAddress kLoopback("127.0.0.1", 0);

// "label: message" of what `work` throws; empty when it throws nothing.
std::string Failure(const Work& work) {
  try {
    work();
  } catch (const NLException& exception) {
    return std::string(exception.function) + ": " + exception.message;
  }
  return "";
}

// True when `work`, asleep on a thread of its own, ends once `wake` was called.
bool EndsOnceWoken(const Work& work, const Work& wake) {
  std::atomic<int> id = 0;
  const auto done = std::async(std::launch::async, [&] {
    id = ::gettid();
    work();
  });
  const bool asleep = WaitFor([&] {
    std::ifstream file("/proc/self/task/" + std::to_string(id) + "/stat");
    std::string line;
    return id != 0 && std::getline(file, line) && line.find(") S ") != std::string::npos;
  });
  wake();
  return asleep && done.wait_for(5s) == std::future_status::ready;
}

struct NLEndpointTest : testing::Test {
  NLEndpointTest() {
    listener.bind(kLoopback);
    listener.listen(5);
  }
  std::unique_ptr<NLEndpoint> Connect(NLEndpoint& from) {
    from.connect(listener.localAddress());
    return listener.accept(5000);
  }

  NLEndpoint listener{NLEndpoint::stream};
  FullPort full;
  NLEndpoint client{NLEndpoint::stream};
  char byte = 0;
};

TEST_F(NLEndpointTest, CarriesBytesUntilTheEndOfTheStream) {
  const auto served = Connect(client);
  ASSERT_TRUE(served);
  EXPECT_EQ(served->state(), NLEndpoint::s_open | NLEndpoint::s_connected);
  NLPacket packet;
  packet.insert("hello");
  EXPECT_EQ(client.send(packet), 6);
  NLPacket received;
  while (received.size() < 6) ASSERT_GT(served->recv(received, 4), 0);
  EXPECT_STREQ(received.data(), "hello");
  served->close();
  EXPECT_EQ(client.recv(&byte, 1), 0);
  client.throwOnSendError = false;  // no signal ends the program
  EXPECT_TRUE(WaitFor([&] { return client.send("x", 1) < 0; }));
  EXPECT_TRUE(client.lastError == EPIPE || client.lastError == ECONNRESET);
  NLEndpoint second(NLEndpoint::stream);
  EXPECT_TRUE(Connect(second)) << "closing a connection leaves the listener";
}

TEST_F(NLEndpointTest, WaitsAsLongAsAsked) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(listener.accept(50));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
  const auto served = Connect(client);
  served->receiveTimeout = 1;
  EXPECT_EQ(served->recv(&byte, 1), 0) << "time-out, not end of stream";
  for (const long forever : {0L, -1L}) {
    EXPECT_TRUE(EndsOnceWoken([&] { EXPECT_TRUE(served->isDataPending(forever)); },
                              [&] { client.send("x", 1); }));
    served->recv(&byte, 1);
  }
}

TEST_F(NLEndpointTest, FailuresSayWhatAndWhy) {
  NLEndpoint unheard(NLEndpoint::stream);
  unheard.bind(kLoopback);
  const Work receive = [this] { client.recv(&byte, 1); };
  EXPECT_EQ(Failure([&] { client.connect(unheard.localAddress()); }),
            "NLEndpoint::connect(): ::connect() failed: Connection refused");
  EXPECT_EQ(Failure(receive), "NLEndpoint::recv(): ::recv() failed: Bad file descriptor");
  EXPECT_EQ(Failure([this] { client.setNonBlock(true); }),
            "NLEndpoint::setOption: Socket not opened");

  client.setSilenceLimit(20);  // kept for the socket that the next connect opens
  const auto served = Connect(client);
  EXPECT_EQ(Failure(receive), "NLEndpoint::recv(): ::recv() failed: Connection timed out");
}

TEST_F(NLEndpointTest, ClosingAndAbortingWakeEveryBlockedCall) {
  const std::vector<char> much(std::size_t{64} << 20);
  const std::pair<std::string, std::function<void(NLEndpoint&)>> cases[] = {
      {"recv(): ::recv()", [this](NLEndpoint& each) { each.recv(&byte, 1); }},
      {"isDataPending(): ::select", [](NLEndpoint& each) { (void)each.isDataPending(0); }},
      {"send(): ::send()",
       [&](NLEndpoint& each) {
         for (;;) each.send(much.data(), much.size());
       }},
      {"isDataPending(): ::select",
       [](NLEndpoint& each) {
         each.bind(kLoopback);
         each.listen(1);
         (void)each.accept(0);
       }},
      {"connect(): ::connect()",
       [this](NLEndpoint& each) {
         each.close();
         each.connect(full.Address());
       }},
      {"connect(): ::connect()",
       [this](NLEndpoint& each) {
         each.close();
         (void)each.connectFirst(std::vector{full.Address(), full.Address()}, 9'000, {});
       }},
  };
  for (const auto& [label, call] : cases) {
    for (const bool abort : {false, true}) {
      NLEndpoint endpoint(NLEndpoint::stream);
      const auto peer = Connect(endpoint);
      std::string failure;
      const Work blocked = [&, &work = call] { failure = Failure([&] { work(endpoint); }); };
      EXPECT_TRUE(EndsOnceWoken(blocked, [&] { abort ? endpoint.abort() : endpoint.close(); }));
      EXPECT_EQ(endpoint.state(), NLEndpoint::s_inval);
      // What a woken send already took is reported first; the next one then finds no socket.
      EXPECT_TRUE(failure == "NLEndpoint::" + label + " failed: Software caused connection abort" ||
                  failure.starts_with("NLEndpoint::send(): "))
          << failure;
    }
  }
}

// At no moment of a connect does an abort leave it hanging, and no socket is opened any more.
TEST_F(NLEndpointTest, AbortRacesConnectAndIsForGood) {
  for (int i = 0; i < 200; ++i) {
    NLEndpoint endpoint(NLEndpoint::stream);
    const Work connect = [&] { Failure([&] { endpoint.connect(full.Address()); }); };
    const auto done = std::async(std::launch::async, connect);
    endpoint.abort();
    ASSERT_EQ(done.wait_for(5s), std::future_status::ready);
    EXPECT_EQ(endpoint.state(), NLEndpoint::s_inval);
    EXPECT_TRUE(Failure([&] { endpoint.connect("localhost", 1); }).ends_with("Connection aborted"));
    EXPECT_TRUE(Failure([&] { endpoint.bind(0); }).ends_with("Connection aborted"));
  }
}

// Labels of a name are at most 63 bytes long: this one is refused without asking anybody.
const std::string kNoName = std::string(80, 'n') + ".invalid";

// A host that is looked up or connected to by its address, its name, its ASCII form.
TEST(NLAddress, TakesBothFamiliesAndInternationalNames) {
  const std::tuple<const char*, int, const char*, const char*> rows[] = {
      {"10.0.0.1", AF_INET, "10.0.0.1", "10.0.0.1"},
      {"0.0.0.0", AF_INET, "0.0.0.0", "0.0.0.0"},
      {"::1", AF_INET6, "::1", ""},
      {"2001:DB8:0::7", AF_INET6, "2001:db8::7", ""},
      {"fe80::1%lo", AF_INET6, "fe80::1%lo", ""},
      {"::ffff:10.0.0.1", AF_INET6, "::ffff:10.0.0.1", ""},
  };
  for (const auto& [host, family, text, quad] : rows) {
    const NLAddress address(host, 8080);
    char told[16] = "";
    std::uint16_t port = 0;
    address.get(told, &port);
    EXPECT_EQ(address.family(), family) << host;
    EXPECT_EQ(address.text(), text);
    EXPECT_STREQ(told, quad);
    EXPECT_EQ(port, 8080);
    EXPECT_EQ(address.withPort(21).port(), 21);
    EXPECT_TRUE(address.withPort(21).isSameHost(NLLookup(host, 1).get().at(0)));
    EXPECT_FALSE(address.isSameHost(NLAddress("192.0.2.1", 8080)));
    EXPECT_FALSE(address.isSameHost(NLAddress("2001:db8::1", 8080)));
  }
  EXPECT_TRUE(NLAddress("fe80::1%lo", 1).isSameHost(NLAddress("fe80::1", 1)));
  EXPECT_EQ(Failure([] {
              NLAddress(":1:", 0);
            }).find("NLAddress::set: ::gethostbyname failed for host name :1:: "),
            0);
  const std::pair<const char*, const char*> names[] = {
      {"ftp.example", "ftp.example"},
      {"B\xC3\xBC"
       "cher.example",
       "xn--bcher-kva.example"},
      {"bu\xCC\x88"
       "cher.example",
       "xn--bcher-kva.example"},
      {"stra\xC3\x9F"
       "e.example",
       "xn--strae-oqa.example"},
      {"\xE4\xBE\x8B\xE3\x80\x82jp", "xn--fsq.jp"},
      {"no\xFFname", "no\xFFname"},
  };
  for (const auto& [host, ascii] : names) EXPECT_EQ(asciiHost(host), ascii);
}

TEST(NLLookup, GivesEveryAddressThrowsAndIsGivenUp) {
  bool quad = false;
  for (const NLAddress& address : NLLookup("localhost", 21).get()) {
    EXPECT_EQ(address.port(), 21);
    quad = quad || address.text() == "127.0.0.1";
  }
  EXPECT_TRUE(quad);
  EXPECT_THROW((void)NLLookup(kNoName, 21).get(), NLException);
  NLLookup lookup("localhost", 21);
  lookup.cancel();
  EXPECT_THROW((void)lookup.get(), NLException);
}

// Hosts have several addresses, of which some are dead. What wins, what is told, and when.
TEST_F(NLEndpointTest, ConnectsToTheFirstAddressThatAnswers) {
  NLEndpoint unheard(NLEndpoint::stream);
  NLEndpoint listener6(NLEndpoint::stream);
  NLEndpoint unheard6(NLEndpoint::stream);
  unheard.bind(kLoopback);
  unheard6.bind(NLAddress("::1", 0));
  listener6.bind(NLAddress("::1", 0));
  listener6.listen(5);
  const NLAddress hangs = full.Address();
  const NLAddress live = listener.localAddress();
  const NLAddress live6 = listener6.localAddress();
  const NLAddress dead = unheard.localAddress();
  const NLAddress dead6 = unheard6.localAddress();
  const NLAddress nowhere("255.255.255.255", 9);  // no socket of this kind gets there
  // Addresses, which of them is connected to or the error, milliseconds at least.
  const std::tuple<std::vector<NLAddress>, int, long> rows[] = {
      {{live6, live}, 0, 0},
      {{dead, live}, 1, 0},
      {{hangs, live}, 1, 250},
      {{hangs, hangs, live6}, 2, 250},  // families take turns
      {{nowhere, dead, live6}, 2, 0},
      {{dead6, dead, nowhere}, -ECONNREFUSED, 0},
      {{dead, hangs, dead6}, -ETIMEDOUT, 400},
      {{}, -EADDRNOTAVAIL, 0},
  };
  for (const auto& [addresses, expected, least] : rows) {
    NLEndpoint endpoint(NLEndpoint::stream);
    endpoint.setSilenceLimit(400);
    const auto begin = std::chrono::steady_clock::now();
    const std::string failure =
        Failure([&, &list = addresses] { EXPECT_TRUE(endpoint.connectFirst(list, 400, {})); });
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, std::chrono::milliseconds(least));
    EXPECT_LT(took, std::chrono::milliseconds(least + 1'500));
    if (expected < 0) {
      EXPECT_EQ(endpoint.lastError, -expected) << failure;
      EXPECT_TRUE(failure.starts_with("NLEndpoint::connect(): ::connect() failed: ")) << failure;
      continue;
    }
    const NLAddress& wanted = addresses.at(static_cast<std::size_t>(expected));
    EXPECT_EQ(failure, "");
    EXPECT_TRUE(endpoint.remoteAddress().isSameHost(wanted)) << endpoint.remoteAddress().text();
    EXPECT_EQ(endpoint.remoteAddress().port(), wanted.port());
    EXPECT_EQ(Failure([&] {
                (void)endpoint.read({&byte, 1});
              }),
              "NLEndpoint::recv(): ::recv() failed: Connection timed out")
        << "the limit holds for the connection, too";
    const auto served = (wanted.family() == AF_INET6 ? listener6 : listener).accept(5000);
    ASSERT_TRUE(served);
    EXPECT_TRUE(served->remoteAddress().isSameHost(endpoint.localAddress()));
  }
  NLEndpoint stopped(NLEndpoint::stream);
  EXPECT_FALSE(stopped.connectFirst(std::vector{hangs}, 9'000, [] { return false; }));
  EXPECT_EQ(stopped.state(), NLEndpoint::s_inval);
  // One endpoint may take either family in turn.
  for (const NLAddress& each : {live, live6, live}) {
    stopped.connect(each);
    EXPECT_TRUE(stopped.localAddress().isSameHost(each));
    stopped.close();
  }
}

}  // namespace
}  // namespace corvane
