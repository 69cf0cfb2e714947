#include "net/NLEndpoint.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "net/BlockedThread.h"
#include "net/NLException.h"
#include "net/NLPacket.h"

namespace corvane {
namespace {

NLAddress Loopback(int port = 0) {
  return {"127.0.0.1", static_cast<std::uint16_t>(port)};
}

std::uint16_t PortOf(const NLAddress& address) {
  std::uint16_t port = 0;
  address.get(static_cast<char*>(nullptr), &port);
  return port;
}

// "label: message" of what `work` throws; empty when it throws nothing.
std::string Failure(const std::function<void()>& work) {
  try {
    work();
  } catch (const NLException& exception) {
    return std::string(exception.function) + ": " + exception.message;
  }
  return "";
}

class NLEndpointTest : public testing::Test {
 protected:
  NLEndpointTest() {
    listener_.bind(Loopback());
    listener_.listen(5);
  }
  std::unique_ptr<NLEndpoint> Connect() {
    client_.connect("127.0.0.1", PortOf(listener_.localAddress()));
    return listener_.accept(5000);
  }

  NLEndpoint listener_{NLEndpoint::stream};
  NLEndpoint client_{NLEndpoint::stream};
};

TEST_F(NLEndpointTest, ConnectsBothEnds) {
  EXPECT_EQ(listener_.state(), NLEndpoint::s_open | NLEndpoint::s_bound);
  const auto served = Connect();
  ASSERT_TRUE(served);
  EXPECT_EQ(client_.state(), NLEndpoint::s_open | NLEndpoint::s_connected);
  EXPECT_EQ(served->state(), NLEndpoint::s_open | NLEndpoint::s_connected);
  EXPECT_EQ(PortOf(served->localAddress()), PortOf(listener_.localAddress()));
  EXPECT_EQ(PortOf(served->remoteAddress()), PortOf(client_.localAddress()));

  NLPacket packet;
  packet.insert("hello");
  EXPECT_EQ(client_.send(packet), 6);
  NLPacket received;
  while (received.size() < 6) ASSERT_GT(served->recv(received, 4), 0);
  EXPECT_STREQ(received.data(), "hello");

  served->close();
  char byte = 0;
  EXPECT_EQ(client_.recv(&byte, 1), 0) << "the peer's end of stream";
  EXPECT_EQ(served->state(), NLEndpoint::s_inval);
  NLEndpoint second(NLEndpoint::stream);
  second.connect(listener_.localAddress());
  EXPECT_TRUE(listener_.accept(5000)) << "closing a connection leaves the listener";
}

TEST_F(NLEndpointTest, WaitsAsLongAsAsked) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(listener_.accept(50));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
  const auto served = Connect();
  EXPECT_FALSE(served->isDataPending(1));
  served->receiveTimeout = 1;
  char byte = 0;
  EXPECT_EQ(served->recv(&byte, 1), 0) << "time-out, not end of stream";
  for (const long forever : {0L, -1L}) {
    bool pending = false;
    BlockedThread waiting([&] { pending = served->isDataPending(forever); });
    EXPECT_TRUE(waiting.WaitUntilAsleep());
    client_.send("x", 1);
    EXPECT_TRUE(waiting.WaitUntilEnded());
    EXPECT_TRUE(pending);
    served->recv(&byte, 1);
  }
}

TEST_F(NLEndpointTest, AFailedConnectMayBeRepeated) {
  NLEndpoint unheard(NLEndpoint::stream);
  unheard.bind(Loopback());
  EXPECT_EQ(Failure([&] { client_.connect(unheard.localAddress()); }),
            "NLEndpoint::connect(): ::connect() failed: Connection refused");
  EXPECT_EQ(client_.state(), NLEndpoint::s_inval);
  EXPECT_TRUE(Connect());
}

TEST_F(NLEndpointTest, FailuresNameTheCall) {
  NLEndpoint closed(NLEndpoint::stream);
  closed.close();
  char byte = 0;
  const std::pair<std::string, std::function<void()>> cases[] = {
      {"NLEndpoint::setOption: Socket not opened", [&] { closed.setNonBlock(true); }},
      {"NLEndpoint::bind(): ::bind() failed: Address already in use",
       [&] { closed.bind(listener_.localAddress()); }},
      {"NLEndpoint::listen(): ::listen() failed: Bad file descriptor", [&] { closed.listen(1); }},
      {"NLEndpoint::isDataPending(): ::select failed: Bad file descriptor",
       [&] { (void)closed.isDataPending(0); }},
      {"NLEndpoint::recv(): ::recv() failed: Bad file descriptor", [&] { closed.recv(&byte, 1); }},
      {"NLEndpoint::accept(): ::accept() failed: Invalid argument",
       [] {
         NLEndpoint deaf(NLEndpoint::stream);  // readable, as it has an end, but does not listen
         (void)deaf.accept(0);
       }},
  };
  for (const auto& [expected, work] : cases) EXPECT_EQ(Failure(work), expected);
}

TEST_F(NLEndpointTest, AGonePeerIsAnErrorNumberAndNoSignal) {
  const auto served = Connect();
  served->close();
  client_.throwOnSendError = false;
  EXPECT_TRUE(WaitFor([&] { return client_.send("x", 1) < 0; }));
  EXPECT_TRUE(client_.lastError == EPIPE || client_.lastError == ECONNRESET);
}

TEST_F(NLEndpointTest, NonBlockingAndSilentSocketsSayWhy) {
  const auto served = Connect();
  char byte = 0;
  served->setNonBlock(true);
  EXPECT_EQ(Failure([&] { served->recv(&byte, 1); }),
            "NLEndpoint::recv(): ::recv() failed: Resource temporarily unavailable");
  served->setNonBlock(false);
  served->setSilenceLimit(20);
  const std::string silent = "NLEndpoint::recv(): ::recv() failed: Connection timed out";
  EXPECT_EQ(Failure([&] { served->recv(&byte, 1); }), silent);

  NLEndpoint later(NLEndpoint::stream);
  later.close();
  later.setSilenceLimit(20);
  later.connect(listener_.localAddress());
  EXPECT_EQ(Failure([&] { later.recv(&byte, 1); }), silent) << "kept for the next socket";
}

// A listener whose queue is full: the system leaves the next connection unanswered.
class FullListener {
 public:
  FullListener() {
    listener_.bind(Loopback());
    listener_.listen(0);
    for (int i = 0; i < 4; ++i) {
      NLEndpoint filler(NLEndpoint::stream);
      filler.setNonBlock(true);
      Failure([&] { filler.connect(Address()); });
    }
  }
  [[nodiscard]] NLAddress Address() const { return listener_.localAddress(); }

 private:
  NLEndpoint listener_{NLEndpoint::stream};
};

TEST_F(NLEndpointTest, ClosingAndAbortingWakeEveryBlockedCall) {
  const FullListener full;
  const std::string gone = " failed: Software caused connection abort";
  char byte = 0;
  const std::vector<char> much(std::size_t{64} << 20);
  struct Case {
    std::string expected;
    std::function<void(NLEndpoint&)> call;
  };
  const Case cases[] = {
      {"NLEndpoint::recv(): ::recv()" + gone, [&](NLEndpoint& each) { each.recv(&byte, 1); }},
      {"NLEndpoint::isDataPending(): ::select" + gone,
       [](NLEndpoint& each) { (void)each.isDataPending(0); }},
      {"NLEndpoint::send(): ::send()" + gone,
       [&](NLEndpoint& each) {
         for (;;) each.send(much.data(), much.size());
       }},
      {"NLEndpoint::isDataPending(): ::select" + gone,
       [](NLEndpoint& each) {
         each.bind(Loopback());
         each.listen(1);
         (void)each.accept(0);
       }},
      {"NLEndpoint::connect(): ::connect()" + gone,
       [&](NLEndpoint& each) {
         each.close();
         each.connect(full.Address());
       }},
  };
  for (const Case& each : cases) {
    for (const bool abort : {false, true}) {
      NLEndpoint endpoint(NLEndpoint::stream);
      endpoint.connect(listener_.localAddress());
      const auto peer = listener_.accept(5000);
      std::string failure;
      {
        BlockedThread blocked([&] { failure = Failure([&] { each.call(endpoint); }); });
        EXPECT_TRUE(blocked.WaitUntilAsleep());
        abort ? endpoint.abort() : endpoint.close();
        EXPECT_TRUE(blocked.WaitUntilEnded()) << each.expected;
      }
      EXPECT_EQ(endpoint.state(), NLEndpoint::s_inval);
      // What a woken send already took is reported first; the next one then finds no socket.
      EXPECT_TRUE(failure == each.expected || failure.starts_with("NLEndpoint::send(): "))
          << failure;
    }
  }
}

TEST_F(NLEndpointTest, AfterAbortNoSocketIsOpenedAgain) {
  client_.abort();
  const NLAddress address = listener_.localAddress();
  char byte = 0;
  const std::function<void()> calls[] = {
      [&] { client_.connect(address); }, [&] { client_.connect("localhost", 1); },
      [&] { client_.bind(0); },          [&] { client_.setProtocol(NLEndpoint::stream); },
      [&] { client_.recv(&byte, 1); },   [&] { (void)client_.accept(0); },
  };
  for (const auto& call : calls) {
    EXPECT_NE(Failure(call).find(": Connection aborted"), std::string::npos) << Failure(call);
    EXPECT_EQ(client_.state(), NLEndpoint::s_inval);
  }
}

// At no moment of a connect does an abort leave it hanging or a socket open.
TEST_F(NLEndpointTest, AbortRacesConnectSafely) {
  const FullListener full;
  for (int i = 0; i < 200; ++i) {
    NLEndpoint endpoint(NLEndpoint::stream);
    BlockedThread connecting([&] { Failure([&] { endpoint.connect(full.Address()); }); });
    endpoint.abort();
    ASSERT_TRUE(connecting.WaitUntilEnded());
    EXPECT_EQ(endpoint.state(), NLEndpoint::s_inval);
  }
}

}  // namespace
}  // namespace corvane
